#include "tqx/log/source/JoinedSource.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tqx
{

JoinedSource::JoinedSource(std::vector<std::string> inputs, FailureListener onFailure,
                           Opener opener)
    : m_paths(std::move(inputs)), m_listener(std::move(onFailure)), m_open(std::move(opener))
{
}

void JoinedSource::fail(const SourceError& error)
{
    m_failed = true;
    m_source.reset();
    if (m_listener)
        m_listener(error);
}

void JoinedSource::openNext()
{
    const std::string& path = m_paths[m_opened++];
    try {
        m_source = m_open(path);
        m_parts.push_back({m_source->placeOf(0).file, m_size});
    } catch (const SourceError& error) {
        fail(error);
    }
}

size_t JoinedSource::read(uint8_t* bytes, size_t capacity)
{
    while (m_source || m_opened < m_paths.size()) {
        if (!m_source) {
            openNext();
            continue;
        }
        try {
            const size_t count = m_source->read(bytes, capacity);
            m_size += count;
            if (count != 0 || m_source->isInterrupted())
                return count;
            m_source.reset();
        } catch (const SourceError& error) {
            fail(error);
        }
    }
    return 0;
}

ByteSource::Place JoinedSource::placeOf(uint64_t offset) const
{
    const auto after =
        std::upper_bound(m_parts.begin(), m_parts.end(), offset,
                         [](uint64_t wanted, const Part& part) { return wanted < part.start; });
    const Part& part = *std::prev(after);
    return {part.name, offset - part.start};
}

} // namespace tqx
