#include "RinexFix.h"

#include <Eigen/Dense>
#include <Eigen/Geometry>

#include <cmath>

using Eigen::Vector3d;

namespace rinex
{

namespace
{

constexpr double lightSpeed = 299792458.0;
constexpr double earthRate = 7.2921151467e-5;
constexpr double leapSeconds = 18;

double at(const NavigationRecord& record, size_t place)
{
    return place < record.numbers.size() && record.numbers[place] ? *record.numbers[place] : 0;
}

/// Position and the relativistic part of the clock (IS-GPS-200, table 20-IV; the others alike).
std::pair<Vector3d, double> keplerAt(const NavigationRecord& r, double since)
{
    const char system = r.satellite[0];
    const double mu = system == 'G' ? 3.986005e14 : 3.986004418e14;
    const double rotation = system == 'C' ? 7.2921150e-5 : earthRate;
    const double rootA = at(r, 10);
    const double axis = rootA * rootA;
    const double e = at(r, 8);
    const double mean = at(r, 6) + (std::sqrt(mu) / (axis * rootA) + at(r, 5)) * since;
    double anomaly = mean;
    for (int i = 0; i < 20; ++i)
        anomaly = mean + e * std::sin(anomaly);
    const double v = 2 * std::atan(std::sqrt((1 + e) / (1 - e)) * std::tan(anomaly / 2));
    const double phi = v + at(r, 17);
    const double s = std::sin(2 * phi);
    const double c = std::cos(2 * phi);
    const double u = phi + at(r, 9) * s + at(r, 7) * c;
    const double radius = axis * (1 - e * std::cos(anomaly)) + at(r, 4) * s + at(r, 16) * c;
    const double inclination = at(r, 15) + at(r, 19) * since + at(r, 14) * s + at(r, 12) * c;
    const double node = at(r, 13) + (at(r, 18) - rotation) * since - rotation * at(r, 11);
    const Vector3d position = Eigen::AngleAxisd(node, Vector3d::UnitZ()) *
                              (Eigen::AngleAxisd(inclination, Vector3d::UnitX()) *
                               Vector3d(radius * std::cos(u), radius * std::sin(u), 0));
    return {position,
            -2 * std::sqrt(mu) / (lightSpeed * lightSpeed) * e * rootA * std::sin(anomaly)};
}

using State = Eigen::Matrix<double, 6, 1>;

/// Equations of motion of the GLONASS interface document, in kilometres.
State rateOf(const State& s, const Vector3d& lunisolar)
{
    constexpr double mu = 398600.4418, radius = 6378.136, j2 = 1082625.75e-9, w = 7.292115e-5;
    const Vector3d p = s.head<3>(), v = s.tail<3>();
    const double r = p.norm();
    const double near = mu / (r * r * r);
    const double flat = 1.5 * j2 * near * radius * radius / (r * r);
    const double z = 5 * p.z() * p.z() / (r * r);
    State rate;
    rate << v, (w * w - near - flat * (1 - z)) * p.x() + 2 * w * v.y(),
        (w * w - near - flat * (1 - z)) * p.y() - 2 * w * v.x(), (-near - flat * (3 - z)) * p.z();
    rate.tail<3>() += lunisolar;
    return rate;
}

Vector3d glonassAt(const NavigationRecord& r, double since)
{
    State s;
    s << at(r, 3), at(r, 7), at(r, 11), at(r, 4), at(r, 8), at(r, 12);
    const Vector3d lunisolar(at(r, 5), at(r, 9), at(r, 13));
    const int steps = 1 + static_cast<int>(std::fabs(since) / 30);
    const double h = since / steps;
    for (int i = 0; i < steps; ++i) {
        const State a = rateOf(s, lunisolar);
        const State b = rateOf(s + h / 2 * a, lunisolar);
        const State c = rateOf(s + h / 2 * b, lunisolar);
        const State d = rateOf(s + h * c, lunisolar);
        s += h / 6 * (a + 2 * b + 2 * c + d);
    }
    return 1000 * s.head<3>();
}

/// DO-229, A.4.4.11.
Vector3d sbasAt(const NavigationRecord& r, double since)
{
    const Vector3d position(at(r, 3), at(r, 7), at(r, 11));
    const Vector3d velocity(at(r, 4), at(r, 8), at(r, 12));
    const Vector3d acceleration(at(r, 5), at(r, 9), at(r, 13));
    return 1000 * (position + velocity * since + acceleration * (since * since / 2));
}

/// The two codes of a system whose ionosphere-free combination is used, with their frequencies and
/// the seconds by which the clock of the message is ahead of that of each signal.
struct Pair {
    std::string first, second;
    double f1, f2;
    double delay1, delay2;
};

std::optional<Pair> pairOf(const SatelliteLine& line, const NavigationRecord& r)
{
    const auto has = [&](const char* type) { return line.values.count(type) != 0; };
    constexpr double l1 = 1575.42, l2 = 1227.6, l5 = 1176.45;
    switch (line.satellite[0]) {
    case 'G': // the group delay cancels
        if (has("C1C") && has("C2L"))
            return Pair{"C1C", "C2L", l1, l2, 0, 0};
        if (has("C1C") && has("C5Q"))
            return Pair{"C1C", "C5Q", l1, l5, 0, 0};
        return std::nullopt;
    case 'R': {
        const double k = at(r, 10);
        if (has("C1C") && has("C2C"))
            return Pair{"C1C", "C2C", 1602 + 0.5625 * k, 1246 + 0.4375 * k, 0, at(r, 16)};
        return std::nullopt;
    }
    case 'E': // the clock of I/NAV is that of this pair
        if (has("C1C") && has("C7Q"))
            return Pair{"C1C", "C7Q", l1, 1207.14, 0, 0};
        return std::nullopt;
    case 'C': // the clock is that of B3I
        if (has("C2I") && has("C6I"))
            return Pair{"C2I", "C6I", 1561.098, 1268.52, at(r, 25), 0};
        return std::nullopt;
    case 'J':
        if (has("C1C") && has("C5Q"))
            return Pair{"C1C", "C5Q", l1, l5, 0, 0};
        return std::nullopt;
    case 'I':
        if (has("C5A") && has("C9A"))
            return Pair{"C5A", "C9A", l5, 2492.028, 0, 0};
        return std::nullopt;
    case 'S':
        if (has("C1C") && has("C5I"))
            return Pair{"C1C", "C5I", l1, l5, 0, 0};
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

/// Saastamoinen's hydrostatic delay in a standard atmosphere and 0.1 m of wet delay.
double troposphere(double height, double sine)
{
    const double pressure = 1013.25 * std::pow(1 - 2.2557e-5 * height, 5.2568);
    return (0.0022768 * pressure + 0.1 * std::exp(-height / 2000)) * 1.001 /
           std::sqrt(0.002001 + sine * sine);
}

/// Of the ionosphere-free combination at the zenith, metres.
double sigmaOf(char system)
{
    switch (system) {
    case 'G':
        return 0.55;
    case 'R':
        return 1;
    case 'E':
    case 'I':
        return 0.35;
    case 'J':
        return 0.42;
    default:
        return 0.7;
    }
}

} // namespace

Vector3d placeOnEarth(double latitude, double longitude, double height)
{
    constexpr double a = 6378137, e2 = 0.00669437999014;
    const double n = a / std::sqrt(1 - e2 * std::pow(std::sin(latitude), 2));
    return {(n + height) * std::cos(latitude) * std::cos(longitude),
            (n + height) * std::cos(latitude) * std::sin(longitude),
            (n * (1 - e2) + height) * std::sin(latitude)};
}

FixFromRinex::FixFromRinex(const NavigationFile& file)
{
    for (const NavigationRecord& record : file.records) {
        // F/NAV has a clock of its own.
        const bool isFnav = record.satellite[0] == 'E' && record.numbers.size() > 20 &&
                            (static_cast<int>(at(record, 20)) & 256) != 0;
        if (record.kind == "EPH" && !isFnav && record.message.compare(0, 3, "CNV") != 0)
            m_records[record.satellite].push_back(record);
    }
}

/// `time` is GPS time, by the clock of the satellite.
std::optional<FixFromRinex::Sent> FixFromRinex::sentBy(const std::string& satellite,
                                                       double time) const
{
    const auto found = m_records.find(satellite);
    if (found == m_records.end())
        return std::nullopt;
    const double behind = satellite[0] == 'R' ? leapSeconds : satellite[0] == 'C' ? 14 : 0;
    const NavigationRecord* best = nullptr;
    for (const NavigationRecord& record : found->second) {
        if (!best ||
            std::fabs(time - behind - record.seconds) < std::fabs(time - behind - best->seconds))
            best = &record;
    }
    const double since = time - behind - best->seconds;
    if (std::fabs(since) > (satellite[0] == 'R' ? 1200 : 7500))
        return std::nullopt;
    double clock = at(*best, 0) + at(*best, 1) * since;
    if (satellite[0] == 'R')
        return Sent{glonassAt(*best, since - clock), clock, best};
    if (satellite[0] == 'S')
        return Sent{sbasAt(*best, since - clock), clock, best};
    clock += at(*best, 2) * since * since;
    const auto [position, relativity] = keplerAt(*best, since - clock);
    return Sent{position, clock + relativity, best};
}

std::optional<FixResult> FixFromRinex::solve(const Epoch& epoch, const std::string& letters) const
{
    struct Used {
        double code;
        Vector3d position;
        char system;
    };
    std::vector<Used> used;
    for (const SatelliteLine& line : epoch.satellites) {
        const char system = line.satellite[0];
        if (letters.find(system) == std::string::npos)
            continue;
        const auto any = sentBy(line.satellite, epoch.seconds);
        const auto pair = any ? pairOf(line, *any->record) : std::nullopt;
        if (!pair)
            continue;
        const double first = line.values.at(pair->first).number;
        const double second = line.values.at(pair->second).number;
        const auto sent = sentBy(line.satellite, epoch.seconds - first / lightSpeed);
        if (!sent)
            continue;
        const double a = 1 / (1 - std::pow(pair->f2 / pair->f1, 2));
        const double code = a * (first - lightSpeed * pair->delay1) +
                            (1 - a) * (second - lightSpeed * pair->delay2);
        used.push_back({code + lightSpeed * sent->clock, sent->position, system});
    }
    const size_t unknowns = 3 + letters.size();
    if (used.size() < unknowns)
        return std::nullopt;
    FixResult fix;
    fix.satellites = used.size();
    Eigen::VectorXd clocks = Eigen::VectorXd::Zero(static_cast<Eigen::Index>(letters.size()));
    for (const Used& satellite : used)
        fix.position += satellite.position.normalized();
    fix.position = fix.position.normalized() * 6378137;
    for (int round = 0; round < 8; ++round) {
        const auto rows = static_cast<Eigen::Index>(used.size());
        Eigen::MatrixXd design = Eigen::MatrixXd::Zero(rows, static_cast<Eigen::Index>(unknowns));
        Eigen::VectorXd residuals(rows);
        Eigen::VectorXd weights(rows);
        const Vector3d up = fix.position.normalized();
        const double height = fix.position.norm() - placeOnEarth(std::asin(up.z()), 0, 0).norm();
        for (Eigen::Index i = 0; i < rows; ++i) {
            const Used& satellite = used[static_cast<size_t>(i)];
            const double flight = (satellite.position - fix.position).norm() / lightSpeed;
            const Vector3d line =
                Eigen::AngleAxisd(-earthRate * flight, Vector3d::UnitZ()) * satellite.position -
                fix.position;
            const double sine = line.normalized().dot(up);
            const auto clock = static_cast<Eigen::Index>(letters.find(satellite.system));
            design.row(i).head<3>() = -line.normalized().transpose();
            design(i, 3 + clock) = 1;
            residuals(i) = satellite.code - line.norm() - clocks(clock) -
                           (std::fabs(height) < 3e4 ? troposphere(height, sine) : 0);
            weights(i) = std::pow(sine / sigmaOf(satellite.system), 2);
        }
        const Eigen::MatrixXd weighted = design.transpose() * weights.asDiagonal();
        const Eigen::MatrixXd inverse = (weighted * design).inverse();
        const Eigen::VectorXd step = inverse * (weighted * residuals);
        fix.position += step.head<3>();
        clocks += step.tail(clocks.size());
        fix.covariance = inverse.topLeftCorner<3, 3>();
    }
    return fix;
}

} // namespace rinex
