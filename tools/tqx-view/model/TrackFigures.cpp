#include "model/TrackFigures.h"

#include <QObject>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace tqx::view
{

namespace
{

constexpr double degree = pi / 180;

Geodetic placeOf(const TrackPoint& point)
{
    return {point.latitude * degree, point.longitude * degree, point.height};
}

} // namespace

Geodetic meanOf(const std::vector<TrackPoint>& track)
{
    Vector sum = {0, 0, 0};
    for (const TrackPoint& point : track)
        sum = sum + toEarthFixed(placeOf(point));
    return toGeodetic(sum * (1.0 / static_cast<double>(track.size())));
}

std::vector<LocalPoint> localTrack(const std::vector<TrackPoint>& track, const Geodetic& centre)
{
    const LocalFrame frame(centre);
    const Vector origin = toEarthFixed(centre);
    std::vector<LocalPoint> points;
    points.reserve(track.size());
    for (const TrackPoint& point : track) {
        const Vector local = frame.toLocal(toEarthFixed(placeOf(point)) - origin);
        points.push_back({point.time, local.x, local.y, local.z, point.fix});
    }
    return points;
}

TrackFigures figuresOf(const std::vector<LocalPoint>& points)
{
    Vector sum = {0, 0, 0};
    double squares = 0;
    for (const LocalPoint& point : points) {
        sum = sum + Vector{point.east, point.north, point.up};
        squares += point.east * point.east + point.north * point.north;
    }
    const auto count = static_cast<double>(points.size());
    const Vector mean = sum * (1 / count);
    Vector spread = {0, 0, 0};
    for (const LocalPoint& point : points) {
        const Vector off = Vector{point.east, point.north, point.up} - mean;
        spread = spread + Vector{off.x * off.x, off.y * off.y, off.z * off.z};
    }
    return {mean,
            {std::sqrt(spread.x / count), std::sqrt(spread.y / count), std::sqrt(spread.z / count)},
            std::sqrt(squares / count)};
}

bool parsePlace(const QString& text, Geodetic& place)
{
    const QStringList parts = text.split(QRegularExpression("[,;\\s]+"), Qt::SkipEmptyParts);
    bool areNumbers = parts.size() == 2 || parts.size() == 3;
    double numbers[3] = {0, 0, 0};
    for (int i = 0; areNumbers && i < parts.size(); ++i)
        numbers[i] = parts[i].toDouble(&areNumbers);
    if (!areNumbers || std::abs(numbers[0]) > 90 || std::abs(numbers[1]) > 360)
        return false;
    place = {numbers[0] * degree, numbers[1] * degree, numbers[2]};
    return true;
}

QString fixName(Fix fix)
{
    switch (fix) {
    case Fix::None:
        return QObject::tr("no position");
    case Fix::Standalone:
        return QObject::tr("standalone");
    case Fix::Differential:
        return QObject::tr("differential");
    case Fix::RtkFloat:
        return QObject::tr("RTK float");
    case Fix::RtkFixed:
        return QObject::tr("RTK fixed");
    case Fix::Ppp:
        return QObject::tr("PPP");
    case Fix::Estimated:
        return QObject::tr("estimated");
    case Fix::Manual:
        return QObject::tr("entered by hand");
    }
    return {};
}

} // namespace tqx::view
