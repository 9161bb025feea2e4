#pragma once

#include "BlockFramer.h"
#include "GnssTime.h"
#include "Input.h"
#include "Progress.h"

#include <chrono>
#include <cstdint>
#include <deque>
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
    uint64_t offset; ///< of its first byte in its file

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

/// A stretch of bytes that belongs to no block.
struct StreamGap {
    std::string file;
    uint64_t offset = 0; ///< in the file that it begins in
    uint64_t bytes = 0;
    uint64_t crcErrors = 0;
    uint64_t invalidLengths = 0;
    bool isCut = false; ///< the input ends where more was expected

    /// "33 bytes belong to no block, 1 bad checksum"
    std::string describe() const;
};

/// The blocks of inputs that follow each other as one stream: a block may begin in one file and end
/// in the next. Each stretch of bytes that belongs to no block is reported to standard error once,
/// with its offset and what was wrong in it. So is an input that cannot be read, which is then left
/// out.
class BlockStream : private BlockFramer::Listener
{
public:
    /// "-" among the paths is standard input. A `quiet` one says nothing about damage and
    /// shows no progress.
    BlockStream(std::vector<std::string> paths, bool quiet);

    /// Gets the next block; false at the end of the last input.
    bool next(Block& block);

    /// Counts and reports a block that the codec refused with `code`. Only for the last one gotten.
    void reportUndecodable(const Block& block, int32_t code);

    /// Has gaps handed to `listener` instead of reported to standard error; undecodable blocks are
    /// then only counted.
    void setGapListener(std::function<void(const StreamGap&)> listener)
    {
        gapListener = std::move(listener);
    }

    /// Has `action` called before more of the input is waited for: the moment to hand on what a
    /// live stream has brought so far.
    void setBeforeRead(std::function<void()> action) { beforeRead = std::move(action); }

    /// Name of the file that the last block began in.
    const std::string& getName() const { return parts.front().name; }
    /// Names of the inputs that could be opened so far.
    const std::vector<std::string>& getNames() const { return names; }
    const StreamCounts& getCounts() const { return counts; }
    /// Whether words about damage are unwanted.
    bool isQuiet() const { return quiet; }

    /// Whether an input could not be opened or read.
    bool hasFailed() const { return failed; }

private:
    /// One input within the stream.
    struct Part {
        std::string name;
        uint64_t start; ///< in the stream
    };

    using Clock = std::chrono::steady_clock;

    bool openNext();
    void handOn();
    size_t readPiece();
    void readOn();
    const Part& partAt(uint64_t offset);
    void closeGap();
    void onChecksumFailed(uint64_t offset) override;
    void onInvalidLength(uint64_t offset) override;
    void onBytesDropped(uint64_t offset, uint64_t count) override;

    std::vector<std::string> paths;
    size_t opened = 0; ///< paths that were tried
    std::optional<Input> input;
    std::optional<Progress> progress; ///< until the last input has ended
    std::vector<std::string> names;
    std::deque<Part> parts; ///< from the one of the last block on
    BlockFramer framer;
    std::vector<char> piece;
    StreamCounts counts;
    StreamGap gap;
    std::function<void(const StreamGap&)> gapListener;
    std::function<void()> beforeRead;
    Clock::time_point handedOn;
    bool quiet;
    bool failed = false;
    bool ended = false;
    bool isCut = false; ///< the last input ended within what looked like a block
};

/// "<name> (4007)", or "block 1234" for a number without type.
std::string describeBlock(uint16_t number);

} // namespace tool
