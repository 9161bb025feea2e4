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

/// Takes records, encodes them and appends them to a buffer, on request as a damaged stream.
class BlockLog
{
public:
    /// With `damageSeed` the stream gets flipped bits, cut blocks and junk. Damage has random
    /// numbers of its own: the valid blocks are those of the undamaged stream.
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

    /// Appends what the receiver sends beside its blocks, at most 65,535 bytes.
    void addNeighbour(const uint8_t* bytes, size_t size);

    /// Bytes appended so far.
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
