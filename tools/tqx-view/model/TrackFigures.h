#pragma once

#include "model/GnssSurvey.h"

#include "tqx/gnss/orbit/Geodesy.h"

#include <QString>

#include <vector>

namespace tqx::view
{

/// A position in metres from a chosen point.
struct LocalPoint {
    double time;
    double east;
    double north;
    double up;
    Fix fix;
};

/// Statistics of positions.
struct TrackFigures {
    Vector mean;       ///< metres from the chosen point: x east, y north, z up
    Vector deviation;  ///< standard deviations around the mean
    double horizontal; ///< root mean square of the distances from the chosen point
};

/// The mean of the positions, around which they are shown by default.
Geodetic meanOf(const std::vector<TrackPoint>& track);

/// The positions in a plane that touches the ellipsoid at `centre`.
std::vector<LocalPoint> localTrack(const std::vector<TrackPoint>& track, const Geodetic& centre);

/// For at least one point.
TrackFigures figuresOf(const std::vector<LocalPoint>& points);

/// Reads "47.07, 15.45, 412.3": degrees and metres. False for anything else.
bool parsePlace(const QString& text, Geodetic& place);

/// The name of a fix.
QString fixName(Fix fix);

} // namespace tqx::view
