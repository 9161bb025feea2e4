#pragma once

#include "tqx/gnss/quality/Quality.h"

namespace tqx::quality
{

/// Gathers moments at which a condition holds into episodes. Pauses shorter than `pause` do not end
/// an episode. Memory is bounded: after the first thousand, episodes are only counted.
class Episodes
{
public:
    explicit Episodes(uint64_t pauseMillis) : m_pause(pauseMillis) {}

    /// The condition holds, with a value of which the largest is kept.
    void hold(GnssMillis time, double value, const std::string& subject = {});

    /// As if it had begun earlier; only while it holds.
    void beginAt(GnssMillis time);

    /// The condition does not hold.
    void pass(GnssMillis time);

    bool isOpen() const { return m_isOpen; }

    /// All episodes, including an open one.
    const std::vector<Episode>& finish();
    uint64_t getCount() const { return m_count; }

private:
    void close();

    uint64_t m_pause;
    Episode m_current;
    bool m_isOpen = false;
    uint64_t m_count = 0;
    std::vector<Episode> m_all;
};

} // namespace tqx::quality
