#pragma once

#include "tqx/gnss/quality/Quality.h"

namespace tqx::quality
{

/// Counts epochs, and those missing between them. The interval is followed: three equal ones in a
/// row that are longer or shorter than before are a change of rate; anything else that is longer is
/// an outage.
class EpochFollower
{
public:
    /// Times ascend.
    void add(GnssMillis time);
    void finish();

    uint64_t getFound() const { return m_found; }
    uint64_t getMissing() const { return m_missing; }
    std::optional<GnssMillis> getFirst() const { return m_first; }
    std::optional<GnssMillis> getLast() const { return m_last; }

    /// The current interval, milliseconds; 0 before the second epoch.
    uint64_t getInterval() const { return m_interval; }
    /// The most frequent interval.
    uint64_t getUsual() const;

    /// Outages, each from the last epoch before to the first one after; the first thousand.
    const std::vector<Episode>& getOutages() const { return m_outages; }
    uint64_t getOutageCount() const { return m_outageCount; }
    /// Milliseconds by which all outages together exceed the interval, and the longest outage.
    uint64_t getOutageMillis() const { return m_outageMillis; }
    uint64_t getLongest() const { return m_longest; }

private:
    void follow(GnssMillis before, uint64_t step);
    void change(uint64_t step);
    void keepOutages();

    std::optional<GnssMillis> m_first;
    std::optional<GnssMillis> m_last;
    uint64_t m_interval = 0;
    std::map<uint64_t, uint64_t> m_epochs; ///< by interval
    std::vector<Episode> m_long;           ///< equal steps that are an outage or a slower rate
    uint64_t m_longStep = 0;
    uint64_t m_shortStep = 0;
    unsigned m_shortSteps = 0;
    uint64_t m_found = 0;
    uint64_t m_missing = 0;
    std::vector<Episode> m_outages;
    uint64_t m_outageCount = 0;
    uint64_t m_outageMillis = 0;
    uint64_t m_longest = 0;
};

} // namespace tqx::quality
