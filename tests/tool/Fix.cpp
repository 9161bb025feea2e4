#include "Fix.h"

#include "TQX_MeasEpoch2_Message.h"
#include "TQX_MeasEpochChannelType2_Message.h"

#include <Eigen/Dense>

#include <bitset>
#include <cmath>

using Eigen::Vector3d;

namespace
{

constexpr double majorAxis = 6378137, squaredEccentricity = 0.00669437999014;

double primeVertical(double latitude)
{
    return majorAxis / std::sqrt(1 - squaredEccentricity * std::pow(std::sin(latitude), 2));
}

/// Saastamoinen's hydrostatic delay in a standard atmosphere and 0.1 m of wet delay.
double troposphere(double height, double sinElevation)
{
    const double pressure = 1013.25 * std::pow(1 - 2.2557e-5 * height, 5.2568);
    return (0.0022768 * pressure + 0.1 * std::exp(-height / 2000)) * 1.001 /
           std::sqrt(0.002001 + sinElevation * sinElevation);
}

} // namespace

Vector3d Place::up() const
{
    return {std::cos(latitude) * std::cos(longitude), std::cos(latitude) * std::sin(longitude),
            std::sin(latitude)};
}

Place placeOf(const Vector3d& position)
{
    const double level = std::hypot(position.x(), position.y());
    Place place = {std::atan2(position.z(), level), std::atan2(position.y(), position.x()), 0};
    for (int i = 0; i < 6; ++i) {
        const double radius = primeVertical(place.latitude);
        place.height = level / std::cos(place.latitude) - radius;
        const double shrunk = squaredEccentricity * radius / (radius + place.height);
        place.latitude = std::atan2(position.z(), level * (1 - shrunk));
    }
    return place;
}

Vector3d positionOf(const Place& place)
{
    const double radius = primeVertical(place.latitude);
    return (radius + place.height) * place.up() -
           Vector3d(0, 0, squaredEccentricity * radius * std::sin(place.latitude));
}

std::vector<Tracked> trackedIn(const TQX_MeasEpoch2_Message& epoch)
{
    std::vector<Tracked> satellites;
    for (const auto* first : epoch.getType1Vector()) {
        const int svid = first->getSVID();
        Tracked satellite = {svid, svid < 38 ? 0 : svid < 71 ? 1 : svid < 107 ? 2 : 3, {}};
        const auto add = [&satellite](const auto& entry) {
            satellite.ranges.push_back({entry.getSignalType(), entry.getCodeRange(),
                                        entry.getCarrierFrequency(),
                                        -entry.getDopplerHz() * entry.getWavelength()});
        };
        add(*first);
        for (const auto* other : first->getType2Vector())
            add(*other);
        satellites.push_back(satellite);
    }
    return satellites;
}

/// At a time of sending by the satellite's system. The earth turns while the signal travels.
Vector3d Solver::lineTo(int svid, double sent, const Fix& fix) const
{
    const Vector3d position = *m_ephemerides.position(svid, sent);
    const double flight = (position - fix.position).norm() / lightSpeed;
    return Eigen::AngleAxisd(-earthRate * flight, Vector3d::UnitZ()) * position - fix.position;
}

Solver::Unexplained Solver::unexplained(const Tracked& satellite, const Range& range,
                                        const Fix& fix) const
{
    const double shown = m_time - range.code / lightSpeed; // by the satellite's clock
    const double ahead = m_ephemerides.clock(satellite.svid, range.signal, shown);
    const Vector3d line = lineTo(satellite.svid, shown - ahead, fix);
    const Place place = placeOf(fix.position);
    const double sine = line.normalized().dot(place.up());
    const double clock = fix.clocks[static_cast<size_t>(satellite.system)];
    // The first steps come from far away.
    const double air = std::fabs(place.height) > 1e4 ? 0 : troposphere(place.height, sine);
    return {range.code + lightSpeed * ahead - line.norm() - air - clock, line, sine};
}

Solver::Row Solver::rowOf(const Tracked& satellite, const Fix& fix) const
{
    const Range& first = satellite.ranges[0];
    const Range& second = satellite.ranges[1];
    const double a = 1 / (1 - std::pow(second.frequency / first.frequency, 2));
    const Unexplained left = unexplained(satellite, first, fix);
    const double residual = a * left.metres + (1 - a) * unexplained(satellite, second, fix).metres;

    const double sent = m_time - first.code / lightSpeed;
    const auto clockAt = [&](double t) {
        return m_ephemerides.clock(satellite.svid, first.signal, t);
    };
    const double drift = (clockAt(sent + 1) - clockAt(sent - 1)) / 2;
    const double rate = (lineTo(satellite.svid, sent - clockAt(sent) + 1, fix).norm() -
                         lineTo(satellite.svid, sent - clockAt(sent) - 1, fix).norm()) /
                        2;
    // A second at the antenna is a little more or less at the satellite.
    const double expected = rate / (1 + rate / lightSpeed) - lightSpeed * drift;
    const double sigma = codeSigma[satellite.system] / left.sinElevation;
    return {left.line.normalized(), satellite.system, residual, first.rate - expected,
            1 / (sigma * sigma)};
}

void Solver::improve(Fix& fix, const std::vector<Row>& rows, unsigned systems) const
{
    const auto count = static_cast<Eigen::Index>(rows.size());
    Eigen::MatrixXd design = Eigen::MatrixXd::Zero(count, 7);
    Eigen::VectorXd residuals(count), rates(count), weights(count);
    for (Eigen::Index i = 0; i < count; ++i) {
        const Row& row = rows[static_cast<size_t>(i)];
        design.row(i).head<3>() = -row.direction.transpose();
        design(i, 3 + row.system) = 1;
        residuals(i) = row.residual;
        rates(i) = row.rateResidual;
        weights(i) = row.weight;
    }
    const Eigen::MatrixXd weighted = design.transpose() * weights.asDiagonal();
    Eigen::MatrixXd normal = weighted * design;
    for (int i = 0; i < 4; ++i) {
        if ((systems >> i & 1U) == 0)
            normal(3 + i, 3 + i) = 1;
    }
    const Eigen::MatrixXd inverse = normal.inverse();
    const Eigen::VectorXd step = inverse * (weighted * residuals);
    fix.position += step.head<3>();
    for (size_t i = 0; i < 4; ++i)
        fix.clocks[i] += step(static_cast<Eigen::Index>(3 + i));
    fix.velocity = (inverse * (weighted * rates)).head<3>();
    fix.covariance = inverse.topLeftCorner<3, 3>();
}

Fix Solver::solve(const std::vector<Tracked>& satellites, unsigned systems) const
{
    std::vector<Tracked> used;
    Vector3d sky = Vector3d::Zero();
    for (const Tracked& satellite : satellites) {
        const auto position = m_ephemerides.position(satellite.svid, m_time);
        if (!position || satellite.ranges.size() < 2 || (systems >> satellite.system & 1U) == 0)
            continue;
        used.push_back(satellite);
        sky += position->normalized();
    }
    const size_t unknowns = 3 + std::bitset<4>(systems).count();
    if (used.size() <= unknowns)
        return {};
    Fix fix;
    fix.redundancy = used.size() - unknowns;
    fix.position = sky.normalized() * majorAxis; // below the middle of the satellites
    for (int round = 0; round < 8; ++round) {
        std::vector<Row> rows;
        for (const Tracked& satellite : used)
            rows.push_back(rowOf(satellite, fix));
        improve(fix, rows, systems);
    }
    return fix;
}
