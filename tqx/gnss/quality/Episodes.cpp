#include "tqx/gnss/quality/Episodes.h"

#include <algorithm>

namespace tqx::quality
{

void Episodes::hold(GnssMillis time, double value, const std::string& subject)
{
    if (m_isOpen && time > m_current.end + m_pause)
        close();
    if (!m_isOpen) {
        m_current = {time, time, value, subject};
        m_isOpen = true;
    }
    m_current.end = std::max(m_current.end, time);
    m_current.worst = std::max(m_current.worst, value);
    if (!subject.empty() && m_current.subject.find(subject) == std::string::npos &&
        m_current.subject.size() < 60)
        m_current.subject += (m_current.subject.empty() ? "" : ", ") + subject;
}

void Episodes::beginAt(GnssMillis time)
{
    m_current.start = std::min(m_current.start, time);
}

void Episodes::pass(GnssMillis time)
{
    if (m_isOpen && time > m_current.end + m_pause)
        close();
}

void Episodes::close()
{
    constexpr size_t most = 1000;
    ++m_count;
    if (m_all.size() < most)
        m_all.push_back(m_current);
    m_isOpen = false;
}

const std::vector<Episode>& Episodes::finish()
{
    if (m_isOpen)
        close();
    return m_all;
}

} // namespace tqx::quality
