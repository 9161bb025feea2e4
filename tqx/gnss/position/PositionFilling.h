#pragma once

#include "tqx/gnss/position/Position.h"

#include <cstdint>

/// Fills positions from the values of blocks. Floating-point numbers of -2e10 are not available.
namespace tqx::filling
{

double known(double value);

/// A scaled integer; all ones mean "not available".
double known(uint16_t value, double scale);

/// From a mode of GNSS positions.
Fix fixOfMode(unsigned mode);

/// From a mode of the inertial filter. Only some blocks say what kind of GNSS positions it uses;
/// for others pass 0.
Fix fixOfInertialMode(unsigned mode, unsigned gnssMode);

/// Variances and covariances of earth-fixed coordinates.
struct Variances {
    double xx, yy, zz, xy, xz, yz;
};

/// From radians and metres. False when there are no coordinates, as with the next.
bool setPlace(Position& position, double latitude, double longitude, double height);

/// From earth-fixed metres, on WGS84.
bool setEarthFixed(Position& position, double x, double y, double z);

void setVelocity(Position& position, double north, double east, double up);

/// Call after filling the place.
void setEarthFixedVelocity(Position& position, double x, double y, double z);

/// Standard deviations.
void setDeviations(Position& position, double north, double east, double up);

/// Call after filling the place.
void setVariances(Position& position, const Variances& variances);

/// Accuracies at 95 %.
void setBounds(Position& position, double horizontal, double vertical, double spatial = notKnown);

template<typename Record>
void setAttitude(Position& position, const Record& attitude)
{
    position.heading = known(attitude.Heading);
    position.pitch = known(attitude.Pitch);
    position.roll = known(attitude.Roll);
}

template<typename Record>
void setCorrections(Position& position, const Record& record)
{
    position.correctionAge = known(record.MeanCorrAge, 0.01);
    position.reference = record.ReferenceID == 65535 ? -1 : record.ReferenceID;
}

} // namespace tqx::filling
