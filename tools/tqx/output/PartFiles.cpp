#include "output/PartFiles.h"

#include "io/Target.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tqx::tool
{

namespace
{

constexpr GnssMillis longestDisorder = 60000;  // milliseconds
constexpr size_t mostHeld = size_t{16} << 20U; // bytes

} // namespace

PartFiles::PartFiles(PartLimits limits, PartNames& names, std::vector<std::string> inputs,
                     Output& list)
    : m_limits(limits), m_names(names), m_inputs(std::move(inputs)), m_list(list)
{
}

bool PartFiles::beginsPart(const std::optional<GnssMillis>& time, size_t size) const
{
    if (!m_part)
        return true;
    if (m_limits.size != 0)
        return m_bytes + size > m_limits.size;
    if (!time)
        return false;
    return !m_start || *time >= *m_start + m_limits.every || *time + longestDisorder < m_latest;
}

void PartFiles::open(const std::optional<GnssMillis>& time)
{
    close();
    m_start = time;
    if (time && m_limits.every != 0)
        m_start = *time / m_limits.every * m_limits.every;
    m_path = m_names.next(m_start);
    refuseSameFile(m_inputs, m_path);
    m_part.emplace(m_path);
}

void PartFiles::append(const char* bytes, size_t size, uint64_t blocks)
{
    m_part->getBuffer().append(bytes, size);
    m_bytes += size;
    m_blocks += blocks;
}

void PartFiles::appendHeld()
{
    append(m_held.data(), m_held.size(), m_heldBlocks);
    m_held.clear();
    m_heldBlocks = 0;
}

void PartFiles::take(BlockStream&, const Block& block)
{
    const auto* bytes = reinterpret_cast<const char*>(block.data);
    const std::optional<GnssMillis> time = block.getTime();
    const bool isNew = beginsPart(time, block.size);
    if (time) {
        m_time = time;
        m_latest = isNew ? *time : std::max(m_latest, *time);
    }
    if (m_limits.every != 0 && !m_part && !m_time && m_held.size() < mostHeld) {
        m_held.append(bytes, block.size);
        ++m_heldBlocks;
        return;
    }
    if (isNew)
        open(m_time);
    appendHeld();
    append(bytes, block.size, 1);
}

void PartFiles::close()
{
    if (!m_part)
        return;
    m_part->flush();
    m_part.reset();
    m_list.getBuffer().append(fmt::format("{}: {} blocks, {} bytes\n", m_path, m_blocks, m_bytes));
    m_list.commit();
    m_blocks = 0;
    m_bytes = 0;
}

void PartFiles::end(InputStream&)
{
    if (m_heldBlocks != 0) {
        open(std::nullopt);
        appendHeld();
    }
    close();
}

void PartFiles::commit()
{
    if (m_part)
        m_part->commit();
}

void PartFiles::flush()
{
    if (m_part)
        m_part->flush();
    m_list.flush();
}

} // namespace tqx::tool
