#pragma once

#include "tqx/gnss/quality/ArcAnalysis.h"

namespace tqx::quality
{

/// How many satellites of each system are tracked, and when those of one system are all missing.
class SystemWatch
{
public:
    /// `signals` in the order of satellites.
    void take(GnssMillis time, const std::vector<SeenSignal>& signals);
    void finish();

    const Moments& getTracked() const { return m_tracked; }
    Plot getPlot() const;

    /// Stretches without any satellite of a system of which three or more were tracked ten seconds
    /// before, from the last epoch before to the first one after, or the end of the log.
    const std::vector<Episode>& getOutages() const { return m_outages; }

private:
    struct System {
        unsigned count = 0;
        GnssMillis last = 0;     ///< time of the last epoch with one
        GnssMillis enoughAt = 0; ///< last time with three or more
        bool isOut = false;
        ThinnedSeries series;
    };

    std::array<System, systemCount> m_systems;
    Moments m_tracked;
    GnssMillis m_last = 0;
    std::vector<Episode> m_outages;
};

} // namespace tqx::quality
