#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx/simulation/Random.h"
#include "tqx/simulation/Receiver.h"

#include "TQX_codec.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tqx::simulation
{

/// Encodes records and appends them to a buffer, on request with damage.
class BlockLog
{
public:
    /// With `damageSeed` the stream gets flipped bits, truncated blocks and junk. Damage has its
    /// own random numbers: the valid blocks are those of the undamaged stream.
    BlockLog(Buffer& output, std::optional<uint64_t> damageSeed);

    /// Stamps the record with the epoch's time, encodes it and appends the block.
    template<typename Record>
    void add(const Epoch& epoch, Record& record,
             int (*encode)(unsigned char*, unsigned short, Record*))
    {
        record.TOW = epoch.towMillis;
        record.WNc = epoch.week;
        write(encode(m_block.data(), static_cast<unsigned short>(m_block.size()), &record));
    }

    /// Appends what the receiver sends besides its blocks, at most 65,535 bytes.
    void addNeighbour(const uint8_t* bytes, size_t size);

    /// Number of bytes appended so far.
    uint64_t getSize() const { return m_written; }

private:
    void write(int bits);
    void writeBytes(size_t size);
    void damage(size_t size);
    void writeJunk();

    Buffer& m_output;
    std::optional<Random> m_random;
    std::vector<uint8_t> m_block;
    uint64_t m_written = 0;
};

} // namespace tqx::simulation
