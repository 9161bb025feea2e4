#include "tqx/simulation/BlockLog.h"

#include "tqx/log/DataError.h"

#include <algorithm>
#include <limits>
#include <string>

namespace tqx::simulation
{

BlockLog::BlockLog(Buffer& target, std::optional<uint64_t> damageSeed)
    : output(target), block(std::numeric_limits<uint16_t>::max())
{
    if (damageSeed)
        random.emplace(*damageSeed);
}

void BlockLog::addNeighbour(const uint8_t* bytes, size_t size)
{
    std::copy(bytes, bytes + size, block.begin());
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
    const size_t before = output.size();
    if (random)
        damage(size);
    else
        output.append(reinterpret_cast<const char*>(block.data()), size);
    written += output.size() - before;
}

void BlockLog::damage(size_t size)
{
    if (random->chance(0.02))
        writeJunk();
    if (random->chance(0.02))
        for (uint64_t flips = 1 + random->below(4); flips != 0; --flips)
            block[random->below(size)] ^= static_cast<uint8_t>(1U << random->below(8));
    if (random->chance(0.01))
        size = random->below(size);
    output.append(reinterpret_cast<const char*>(block.data()), size);
}

/// Random bytes, now and then with what looks like the start of a block.
void BlockLog::writeJunk()
{
    const uint64_t size = 1 + random->below(300);
    for (uint64_t i = 0; i < size; ++i)
        output.append(static_cast<char>(random->below(256)));
    if (random->chance(0.3))
        output.append("$@");
}

} // namespace tqx::simulation
