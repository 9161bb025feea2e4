#pragma once

#include "Orbit.h"
#include "Random.h"

#include <vector>

namespace tool
{

/// The satellites of GPS on orbits near the nominal ones: six planes with five satellites each.
class Constellation
{
public:
    /// Orbits around a time; the same generator state gives the same orbits.
    Constellation(Random& random, uint16_t week, double tow);

    size_t size() const { return base.size(); }

    /// What satellite `index` sends at a time; a new ephemeris comes every two hours. The numbers
    /// are multiples of the steps of the navigation message.
    Ephemeris ephemerisAt(size_t index, uint16_t week, double tow) const;

private:
    std::vector<Ephemeris> base;
};

} // namespace tool
