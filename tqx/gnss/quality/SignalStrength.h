#pragma once

#include "tqx/gnss/quality/ArcAnalysis.h"
#include "tqx/gnss/quality/Episodes.h"

namespace tqx::quality
{

/// C/N0 of all signals by elevation, and when it falls on all satellites of a band at once: by
/// 5 dB on average relative to the preceding minutes.
class SignalStrength
{
public:
    void take(GnssMillis time, const std::vector<SeenSignal>& signals);

    /// Fills in signals and satellites; returns the plot.
    Plot report(AntennaQuality& quality) const;
    const std::vector<Episode>& findWeak() { return m_weak.finish(); }

private:
    struct SignalFigures {
        Moments all;
        std::array<Moments, 9> byElevation;
    };
    /// A signal of a satellite.
    struct Usual {
        SignalCode code;
        SignalFigures* figures = nullptr; ///< of the signal of all satellites
        double value = none;
        GnssMillis time = 0;
    };
    struct SatelliteFigures {
        Moments cn0;
        uint64_t epochs = 0;
        GnssMillis last = 0;
        double highest = none;
        std::vector<Usual> usual;
    };
    struct Fall {
        double sum = 0;
        unsigned count = 0;
        Moments cn0;
    };

    Usual& usualOf(SatelliteFigures& satellite, const Observation& observation);

    Moments m_all;
    std::map<std::pair<char, SignalCode>, SignalFigures> m_signals;
    std::map<SatelliteId, SatelliteFigures> m_satellites;
    std::map<char, ThinnedSeries> m_series; ///< mean of a band
    Episodes m_weak{30000};
};

} // namespace tqx::quality
