#pragma once

#include "tqx/gnss/quality/ArcAnalysis.h"
#include "tqx/gnss/quality/SignalStrength.h"
#include "tqx/gnss/quality/SystemWatch.h"

namespace tqx::quality
{

/// All that is computed from the measurements at one antenna.
class AntennaAnalysis
{
public:
    explicit AntennaAnalysis(uint8_t number) : m_number(number) {}

    /// Something was measured in the epoch at hand, above the mask or not.
    void see() { m_hasSeen = true; }

    /// What is above the mask.
    void add(const SeenSignal& seen) { m_seen.push_back(seen); }

    /// Every epoch of the log; `interval` is the time between them, milliseconds.
    void closeEpoch(GnssMillis time, uint64_t interval);
    void finish();

    /// Once the log has its epochs and outages: which of them the antenna has; stretches without
    /// measurements between others' become outages of its own, and findings.
    void reportEpochs(AntennaQuality& antenna, Quality& log) const;

    /// Fills in satellites and signals, and adds findings and plots to the log.
    void report(AntennaQuality& antenna, Quality& log) const;

    /// Adds times when all signals are weak as findings, but those that the receiver explains by
    /// other findings of the log.
    void reportWeak(AntennaQuality& antenna, Quality& log);

private:
    void reportSystems(AntennaQuality& antenna, Quality& log) const;
    void reportArcs(AntennaQuality& antenna, Quality& log) const;
    void addFinding(Quality& log, FindingKind kind, const Episode& episode, double value,
                    const std::string& text) const;
    void addPlot(Quality& log, Plot plot) const;
    void keepOutage(GnssMillis end);

    uint8_t m_number;
    SignalStrength m_strength;
    SystemWatch m_systems;
    ArcAnalysis m_arcs;
    std::vector<SeenSignal> m_seen;
    std::vector<SeenSignal> m_withPhase;
    bool m_hasSeen = false;
    uint64_t m_epochs = 0;  ///< with measurements
    GnssMillis m_first = 0; ///< of them
    GnssMillis m_last = 0;  ///< likewise
    GnssMillis m_now = 0;   ///< of the log
    uint64_t m_interval = 0;
    uint64_t m_outageCount = 0;
    uint64_t m_outageMillis = 0;
    uint64_t m_longestOutage = 0;
    std::vector<Episode> m_outages; ///< from the last epoch before to the first one after
};

} // namespace tqx::quality
