#include "tqx/gnss/orbit/Kepler.h"

#include <cmath>

namespace tqx
{

namespace
{

/// Semicircles per second.
double meanMotion(const KeplerElements& elements, const EarthModel& model)
{
    const double axis = elements.sqrtA * elements.sqrtA;
    return std::sqrt(model.gravitation / (axis * axis * axis)) / pi + elements.motionCorrection;
}

double eccentricAnomaly(double mean, double eccentricity)
{
    double anomaly = mean;
    for (int i = 0; i < 5; ++i) {
        anomaly -= (anomaly - eccentricity * std::sin(anomaly) - mean) /
                   (1 - eccentricity * std::cos(anomaly));
    }
    return anomaly;
}

} // namespace

const EarthModel& earthModel(System system)
{
    static constexpr EarthModel gps = {3.986005e14, 7.2921151467e-5, -4.442807633e-10};
    static constexpr EarthModel galileo = {3.986004418e14, 7.2921151467e-5, -4.442807309e-10};
    static constexpr EarthModel beiDou = {3.986004418e14, 7.2921150e-5, -4.442807309e-10};
    return system == System::Galileo ? galileo : system == System::BeiDou ? beiDou : gps;
}

KeplerPoint pointAt(const KeplerElements& elements, const EarthModel& model, double elapsed)
{
    const double e = elements.eccentricity;
    const double mean = wrapped(elements.meanAnomaly + meanMotion(elements, model) * elapsed) * pi;
    const double anomaly = eccentricAnomaly(mean, e);
    const double sine = std::sin(anomaly);
    const double cosine = std::cos(anomaly);
    const double argument =
        std::atan2(std::sqrt(1 - e * e) * sine, cosine - e) + elements.perigee * pi;
    const double sine2 = std::sin(2 * argument);
    const double cosine2 = std::cos(2 * argument);
    const double latitude = argument + elements.cus * sine2 + elements.cuc * cosine2;
    const double radius = elements.sqrtA * elements.sqrtA * (1 - e * cosine) +
                          elements.crs * sine2 + elements.crc * cosine2;
    const double inclination = (elements.inclination + elements.inclinationRate * elapsed) * pi +
                               elements.cis * sine2 + elements.cic * cosine2;
    const double node =
        elements.ascendingNode * pi + (elements.nodeRate * pi - model.rotation) * elapsed;
    const double x = radius * std::cos(latitude);
    const double y = radius * std::sin(latitude);
    const double across = y * std::cos(inclination);
    return {{x * std::cos(node) - across * std::sin(node),
             x * std::sin(node) + across * std::cos(node), y * std::sin(inclination)},
            model.relativity * e * elements.sqrtA * sine};
}

KeplerElements advanced(const KeplerElements& elements, const EarthModel& model, double elapsed)
{
    KeplerElements later = elements;
    later.meanAnomaly = wrapped(elements.meanAnomaly + meanMotion(elements, model) * elapsed);
    later.ascendingNode =
        elements.ascendingNode + (elements.nodeRate - model.rotation / pi) * elapsed;
    later.inclination = elements.inclination + elements.inclinationRate * elapsed;
    return later;
}

double wrapped(double semicircles)
{
    return semicircles - 2 * std::round(semicircles / 2);
}

} // namespace tqx
