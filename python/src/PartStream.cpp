#include "PartStream.h"

#include "Interrupts.h"
#include "tqx/log/DataError.h"
#include "tqx/log/source/Decompressor.h"
#include "tqx/log/source/JoinedSource.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/source/OpenSource.h"

#include <fmt/format.h>

namespace tqx::python
{

PartStream::PartStream(const std::vector<std::string>& paths, const Partition& part,
                       const Schema& schema)
    : m_schema(schema), m_begin(part.begin), m_week(part.context)
{
    const std::string& path = paths.front();
    m_file = std::make_unique<FileAccess>(path);
    uint8_t first[4];
    const size_t count = m_file->readAt(0, first, sizeof first);
    const bool isWhole =
        paths.size() > 1 || compressionOf(first, count) != Compression::None || !m_file->getBytes();
    if (isWhole && part.begin != 0)
        throw SourceError(path + ": a compressed log has no parts");
    if (paths.size() > 1) {
        m_source = std::make_unique<JoinedSource>(
            paths, [](const SourceError& error) { throw SourceError(error); });
    } else if (isWhole) {
        m_source = openSource(path);
    } else if (part.end > m_file->getSize() || part.begin > part.end) {
        throw SourceError(fmt::format("{}: {}: the log has shrunk since it was indexed", path,
                                      m_file->getSize()));
    } else {
        m_source = std::make_unique<MemorySource>(m_file->getBytes() + part.begin,
                                                  static_cast<size_t>(part.end - part.begin), path);
    }
    m_stream = std::make_unique<BlockStream>(*m_source);
}

bool PartStream::next(Block& block)
{
    constexpr unsigned blocksPerCheck = 4096;
    if (++m_sinceCheck == blocksPerCheck) {
        m_sinceCheck = 0;
        checkInterrupt();
    }
    if (!m_stream->next(block))
        return false;
    m_week.follow(block, m_schema);
    block.offset += m_begin;
    return true;
}

} // namespace tqx::python
