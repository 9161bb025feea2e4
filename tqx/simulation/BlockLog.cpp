#include "tqx/simulation/BlockLog.h"

#include "tqx/log/DataError.h"

#include <algorithm>
#include <limits>
#include <string>

namespace tqx::simulation
{

BlockLog::BlockLog(Buffer& target, std::optional<uint64_t> damageSeed)
    : m_output(target), m_block(std::numeric_limits<uint16_t>::max())
{
    if (damageSeed)
        m_random.emplace(*damageSeed);
}

void BlockLog::addNeighbour(const uint8_t* bytes, size_t size)
{
    std::copy(bytes, bytes + size, m_block.begin());
    writeBytes(size);
}

void BlockLog::write(int bits)
{
    if (bits < 0)
        throw DataError(std::string("simulate: ") + TQX_errorName(bits));
    writeBytes(static_cast<size_t>(bits) / 8);
}

void BlockLog::writeBytes(size_t size)
{
    const size_t before = m_output.size();
    if (m_random) {
        damage(size);
    } else {
        m_output.append(reinterpret_cast<const char*>(m_block.data()), size);
    }
    m_written += m_output.size() - before;
}

void BlockLog::damage(size_t size)
{
    if (m_random->chance(0.02))
        writeJunk();
    if (m_random->chance(0.02)) {
        for (uint64_t flips = 1 + m_random->below(4); flips != 0; --flips)
            m_block[m_random->below(size)] ^= static_cast<uint8_t>(1U << m_random->below(8));
    }
    if (m_random->chance(0.01))
        size = m_random->below(size);
    m_output.append(reinterpret_cast<const char*>(m_block.data()), size);
}

/// Random bytes, occasionally with what looks like the start of a block.
void BlockLog::writeJunk()
{
    const uint64_t size = 1 + m_random->below(300);
    for (uint64_t i = 0; i < size; ++i)
        m_output.append(static_cast<char>(m_random->below(256)));
    if (m_random->chance(0.3))
        m_output.append("$@");
}

} // namespace tqx::simulation
