#pragma once

#include "Output.h"
#include "Random.h"
#include "Receiver.h"
#include "ToolError.h"

#include "TQX_codec.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tool
{

/// Takes records, encodes them and writes them as a stream, on request a damaged one.
class BlockLog
{
public:
    /// With `damageSeed` the stream gets flipped bits, cut blocks and junk. Damage has random
    /// numbers of its own: the sound blocks are those of the sound stream.
    BlockLog(Output& output, std::optional<uint64_t> damageSeed);

    /// Stamps the record with the epoch's time, encodes it and writes the block.
    template<typename Record>
    void add(const Epoch& epoch, Record& record,
             int (*encode)(unsigned char*, unsigned short, Record*))
    {
        record.TOW = epoch.towMillis;
        record.WNc = epoch.week;
        write(encode(block.data(), static_cast<unsigned short>(block.size()), &record));
    }

    /// Bytes written so far.
    uint64_t getSize() const { return written; }

private:
    void write(int bits);
    void damage(size_t size);
    void writeJunk();

    Output& output;
    std::optional<Random> random;
    std::vector<uint8_t> block;
    uint64_t written = 0;
};

} // namespace tool
