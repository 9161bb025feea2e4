#include "Ephemerides.h"

#include "TQX_BDSCNav3_Message.h"
#include "TQX_BDSNav_Message.h"
#include "TQX_GALNav_Message.h"
#include "TQX_GLONav_Message.h"
#include "TQX_GPSNav_Message.h"

#include <Eigen/Geometry>

#include <cmath>

using Eigen::Vector3d;

namespace
{

constexpr double pi = 3.1415926535898; // as the interface documents fix it
constexpr int secondMessage = 1000;

double sinceReference(const BroadcastOrbit& orbit, double tow)
{
    const double elapsed = tow - orbit.behindGps - orbit.toe;
    return elapsed - 604800 * std::round(elapsed / 604800);
}

template<typename Nav>
BroadcastOrbit keplerOrbit(const Nav& nav, double sqrtA)
{
    BroadcastOrbit orbit = {};
    orbit.toe = nav.gett_oe();
    orbit.sqrtA = sqrtA;
    orbit.m0 = nav.getM_0();
    orbit.deltaN = nav.getDEL_N();
    orbit.e = nav.gete();
    orbit.omega = nav.getomega();
    orbit.omega0 = nav.getOMEGA_0();
    orbit.omegaDot = nav.getOMEGADOT();
    orbit.i0 = nav.geti_0();
    orbit.iDot = nav.getIDOT();
    orbit.cuc = nav.getC_uc();
    orbit.cus = nav.getC_us();
    orbit.crc = nav.getC_rc();
    orbit.crs = nav.getC_rs();
    orbit.cic = nav.getC_ic();
    orbit.cis = nav.getC_is();
    orbit.af0 = nav.geta_f0();
    orbit.af1 = nav.geta_f1();
    orbit.af2 = nav.geta_f2();
    orbit.gravitation = 3.986004418e14;
    orbit.rotation = earthRate;
    orbit.relativity = -4.442807309e-10;
    return orbit;
}

double squared(double ratio)
{
    return ratio * ratio;
}

struct Kepler {
    double anomaly;
    Vector3d position;
};

Kepler keplerAt(const BroadcastOrbit& o, double tk)
{
    const double axis = o.sqrtA * o.sqrtA;
    const double m = o.m0 * pi + (std::sqrt(o.gravitation) / (axis * o.sqrtA) + o.deltaN * pi) * tk;
    double anomaly = m;
    for (int i = 0; i < 20; ++i)
        anomaly = m + o.e * std::sin(anomaly);
    const double v = 2 * std::atan(std::sqrt((1 + o.e) / (1 - o.e)) * std::tan(anomaly / 2));
    const double phi = v + o.omega * pi;
    const double u = phi + o.cus * std::sin(2 * phi) + o.cuc * std::cos(2 * phi);
    const double r = axis * (1 - o.e * std::cos(anomaly)) + o.crs * std::sin(2 * phi) +
                     o.crc * std::cos(2 * phi);
    const double i =
        o.i0 * pi + o.iDot * pi * tk + o.cis * std::sin(2 * phi) + o.cic * std::cos(2 * phi);
    const double node = o.omega0 * pi + (o.omegaDot * pi - o.rotation) * tk - o.rotation * o.toe;
    return {anomaly, Eigen::AngleAxisd(node, Vector3d::UnitZ()) *
                         (Eigen::AngleAxisd(i, Vector3d::UnitX()) *
                          Vector3d(r * std::cos(u), r * std::sin(u), 0))};
}

using State = Eigen::Matrix<double, 6, 1>;

/// Equations of motion in the earth-fixed frame PZ-90 (GLONASS ICD, simplified algorithm).
State glonassRate(const State& s, const Vector3d& lunisolar)
{
    constexpr double mu = 398600441.8e6, ae = 6378136, j02 = 1082625.75e-9, w = 7.292115e-5;
    const Vector3d p = s.head<3>(), v = s.tail<3>();
    const double r = p.norm();
    const double rho2 = squared(ae / r), z2 = squared(p.z() / r), mu0 = mu / (r * r * r);
    State rate;
    rate << v, (-mu0 - 1.5 * j02 * mu0 * rho2 * (1 - 5 * z2) + w * w) * p.x() + 2 * w * v.y(),
        (-mu0 - 1.5 * j02 * mu0 * rho2 * (1 - 5 * z2) + w * w) * p.y() - 2 * w * v.x(),
        (-mu0 - 1.5 * j02 * mu0 * rho2 * (3 - 5 * z2)) * p.z();
    rate.tail<3>() += lunisolar;
    return rate;
}

Vector3d glonassAt(const BroadcastOrbit& o, double tk)
{
    State s;
    s << o.position, o.velocity;
    const int count = 1 + static_cast<int>(std::fabs(tk) / 30);
    const double h = tk / count;
    for (int i = 0; i < count; ++i) {
        const State k1 = glonassRate(s, o.acceleration);
        const State k2 = glonassRate(s + h / 2 * k1, o.acceleration);
        const State k3 = glonassRate(s + h / 2 * k2, o.acceleration);
        const State k4 = glonassRate(s + h * k3, o.acceleration);
        s += h / 6 * (k1 + 2 * k2 + 2 * k3 + k4);
    }
    return s.head<3>();
}

BroadcastOrbit glonassOrbit(const TQX_GLONav_Message& nav)
{
    BroadcastOrbit orbit = {};
    orbit.isGlonass = true;
    orbit.toe = nav.gett_oe();
    orbit.position = {nav.getX(), nav.getY(), nav.getZ()};
    orbit.velocity = {nav.getVx(), nav.getVy(), nav.getVz()};
    orbit.acceleration = {nav.getAx(), nav.getAy(), nav.getAz()};
    orbit.af0 = -nav.gettau_n();
    orbit.af1 = nav.getgamma_n();
    orbit.delays = {{11, nav.getDEL_tau_n()}};
    return orbit;
}

} // namespace

void Ephemerides::take(const Message& message)
{
    if (const auto* gps = dynamic_cast<const TQX_GPSNav_Message*>(&message)) {
        BroadcastOrbit& orbit = m_orbits[gps->getPRN()] = keplerOrbit(*gps, gps->getSQRT_A());
        orbit.gravitation = 3.986005e14;
        orbit.relativity = -4.442807633e-10;
        const double delay = gps->getT_gd();
        orbit.delays = {
            {0, delay}, {3, squared(77. / 60) * delay}, {4, squared(154. / 115) * delay}};
    } else if (const auto* galileo = dynamic_cast<const TQX_GALNav_Message*>(&message)) {
        const bool isFnav = galileo->getSource() == 0;
        BroadcastOrbit& orbit = m_orbits[galileo->getSVID() + (isFnav ? secondMessage : 0)] =
            keplerOrbit(*galileo, galileo->getSQRT_A());
        orbit.delays = {{17, galileo->getBGD_E1E5b()},
                        {20, squared(154. / 115) * galileo->getBGD_E1E5a()},
                        {21, squared(154. / 118) * galileo->getBGD_E1E5b()}};
    } else if (const auto* beiDou = dynamic_cast<const TQX_BDSNav_Message*>(&message)) {
        BroadcastOrbit& orbit = m_orbits[beiDou->getPRN()] =
            keplerOrbit(*beiDou, beiDou->getSQRT_A());
        orbit.rotation = 7.2921150e-5;
        orbit.behindGps = 14;
        orbit.delays = {{28, beiDou->getT_gd1()}};
    } else if (const auto* b2b = dynamic_cast<const TQX_BDSCNav3_Message*>(&message)) {
        const double reference = b2b->getSatType() == 3 ? 27906100 : 42162200;
        BroadcastOrbit& orbit = m_orbits[b2b->getPRN() + secondMessage] =
            keplerOrbit(*b2b, std::sqrt(reference + b2b->getDEL_A()));
        orbit.rotation = 7.2921150e-5;
        orbit.behindGps = 14;
        orbit.delays = {{34, b2b->getT_gd_B2bI()}};
    } else if (const auto* glonass = dynamic_cast<const TQX_GLONav_Message*>(&message)) {
        m_orbits[glonass->getSVID()] = glonassOrbit(*glonass);
    }
}

const BroadcastOrbit& Ephemerides::orbitFor(int svid, int signal) const
{
    // E5a and B2b have messages of their own.
    return m_orbits.at(signal == 20 || signal == 34 ? svid + secondMessage : svid);
}

std::optional<Vector3d> Ephemerides::position(int svid, double tow) const
{
    const auto found = m_orbits.find(svid);
    if (found == m_orbits.end())
        return std::nullopt;
    const BroadcastOrbit& orbit = found->second;
    const double tk = sinceReference(orbit, tow);
    if (std::fabs(tk) > (orbit.isGlonass ? 1200 : 7500))
        return std::nullopt;
    return orbit.isGlonass ? glonassAt(orbit, tk) : keplerAt(orbit, tk).position;
}

double Ephemerides::clock(int svid, int signal, double tow) const
{
    const BroadcastOrbit& orbit = orbitFor(svid, signal);
    const double tk = sinceReference(orbit, tow);
    const auto delay = orbit.delays.find(signal);
    const double polynomial = orbit.af0 + orbit.af1 * tk + orbit.af2 * tk * tk -
                              (delay == orbit.delays.end() ? 0 : delay->second);
    return orbit.isGlonass ? polynomial
                           : polynomial + orbit.relativity * orbit.e * orbit.sqrtA *
                                              std::sin(keplerAt(orbit, tk).anomaly);
}
