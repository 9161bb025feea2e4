#pragma once

#include "tqx/simulation/BlockLog.h"
#include "tqx/simulation/Satellite.h"

#include <map>

namespace tqx::simulation
{

/// The almanacs of GLONASS: for each satellite its first passage of the equator northwards on a day
/// of Moscow, the orbit there, and the time from one such passage to the next.
class GlonassAlmanacs
{
public:
    /// The almanac of the day. The satellite must have been moved to the time of the epoch.
    void add(BlockLog& log, const Epoch& epoch, const Satellite& satellite);

private:
    /// Angles in semicircles, times in seconds.
    struct Passage {
        double day; ///< when the day begins, since the start of the almanac week
        double time;
        double period;
        double longitude;
        double inclination;
        double eccentricity;
        double perigee;
    };
    static Passage passageOn(double day, const Satellite& satellite);

    std::map<uint8_t, Passage> m_passages; ///< the last ones, by satellite
};

} // namespace tqx::simulation
