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

/// What positions come to.
struct TrackFigures {
    Vector mean;       ///< metres from the chosen point: x east, y north, z up
    Vector deviation;  ///< standard deviations around the mean
    double horizontal; ///< root mean square of the distances from the chosen point
};

/// The mean of the positions, which is what they are shown around if nobody chooses.
Geodetic meanOf(const std::vector<TrackPoint>& track);

/// The positions in a plane that touches the ellipsoid at `centre`.
std::vector<LocalPoint> localTrack(const std::vector<TrackPoint>& track, const Geodetic& centre);

/// Of at least one point.
TrackFigures figuresOf(const std::vector<LocalPoint>& points);

/// Reads "47.07, 15.45, 412.3": degrees and metres. False for anything else.
bool parsePlace(const QString& text, Geodetic& place);

/// How a fix is called.
QString fixName(Fix fix);

} // namespace tqx::view
