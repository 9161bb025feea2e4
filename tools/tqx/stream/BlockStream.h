#pragma once

#include "BlockFramer.h"
#include "GnssTime.h"
#include "Input.h"
#include "Progress.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tool
{

/// A framed block with a sound checksum. The bytes stay valid until the next one is asked for.
struct Block {
    const uint8_t* data;
    uint16_t size;
    uint64_t offset; ///< of its first byte in the stream

    uint16_t getNumber() const { return static_cast<uint16_t>(getId() & 0x1fffU); }
    unsigned getRevision() const { return static_cast<unsigned>(getId()) >> 13U; }
    uint16_t getId() const { return static_cast<uint16_t>(data[4] | data[5] << 8U); }

    /// The time in its header; nothing when that is not available or the block too short for it.
    std::optional<GnssMillis> getTime() const;
};

/// What framing has found so far.
struct StreamCounts {
    uint64_t bytes = 0;          ///< of the input
    uint64_t blocks = 0;         ///< sound ones
    uint64_t droppedBytes = 0;   ///< that belong to no sound block
    uint64_t crcErrors = 0;      ///< complete candidates with a bad checksum
    uint64_t invalidLengths = 0; ///< candidates that claim fewer bytes than a header has
    uint64_t undecodable = 0;    ///< sound blocks of known types that do not decode

    bool isDamaged() const { return droppedBytes != 0 || undecodable != 0; }
};

/// The blocks of one input, in stream order. Each stretch of bytes that belongs to no block is
/// reported to standard error once, with its offset and what was wrong in it.
class BlockStream : private BlockFramer::Listener
{
public:
    /// Opens `path`, "-" for standard input. Without `reportDamage` nothing is said about
    /// damage. Throws InputError when the input cannot be opened.
    BlockStream(const std::string& path, bool reportDamage);

    /// Gets the next block; false at the end of the input. Throws InputError when reading fails.
    bool next(Block& block);

    /// Counts and reports a block that the codec refused with `code`.
    void reportUndecodable(const Block& block, int32_t code);

    /// Has `action` called each time before more of the input is read: the moment to hand on what
    /// a live stream has brought so far.
    void setBeforeRead(std::function<void()> action) { beforeRead = std::move(action); }

    const std::string& getName() const { return input.getName(); }
    const StreamCounts& getCounts() const { return counts; }

private:
    struct Gap {
        uint64_t offset = 0;
        uint64_t bytes = 0;
        uint64_t crcErrors = 0;
        uint64_t invalidLengths = 0;
    };

    void readOn();
    void closeGap();
    void onChecksumFailed(uint64_t offset) override;
    void onInvalidLength(uint64_t offset) override;
    void onBytesDropped(uint64_t offset, uint64_t count) override;

    Input input;
    Progress progress;
    BlockFramer framer;
    std::vector<char> piece;
    StreamCounts counts;
    Gap gap;
    std::function<void()> beforeRead;
    bool reportDamage;
    bool ended = false;
};

/// "<name> (4007)", or "block 1234" for a number without type.
std::string describeBlock(uint16_t number);

} // namespace tool
