#pragma once

#include "tqx/framing/BlockFramer.h"
#include "tqx/log/mixed/NeighbourScanner.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/source/ByteSource.h"
#include "tqx/log/stream/Block.h"
#include "tqx/log/stream/StreamListener.h"
#include "tqx/log/stream/WeekContext.h"
#include "tqx_log_export.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// What framing has found so far. Once the input has ended, the bytes are those of the blocks, the
/// neighbours and the dropped ones.
struct StreamCounts {
    uint64_t bytes = 0;          ///< of the input
    uint64_t blocks = 0;         ///< valid ones
    uint64_t droppedBytes = 0;   ///< that belong to no valid block and no neighbour
    uint64_t crcErrors = 0;      ///< complete candidates with a bad checksum
    uint64_t invalidLengths = 0; ///< candidates that claim fewer bytes than a header has
    uint64_t undecodable = 0;    ///< valid blocks of known types that fail to decode
    std::array<NeighbourCount, neighbourKinds> neighbours; ///< by NeighbourKind

    const NeighbourCount& of(NeighbourKind kind) const
    {
        return neighbours[static_cast<size_t>(kind)];
    }

    /// Neighbours are not damage.
    bool isDamaged() const { return droppedBytes != 0 || undecodable != 0; }
};

/// The valid blocks of a source, in order. Everything else in it goes to a listener. What looks
/// like the start of a block inside a neighbour is not an error. Works in constant memory.
class TQX_LOG_API BlockStream : private BlockFramer::Listener, private NeighbourScanner::Listener
{
public:
    /// Owns neither; both must outlive the stream. The listener may be null.
    explicit BlockStream(ByteSource& source, StreamListener* listener = nullptr);
    virtual ~BlockStream();
    BlockStream(const BlockStream&) = delete;
    BlockStream& operator=(const BlockStream&) = delete;

    /// Sets the types that move the week of getContext() and that the headers of a live source are
    /// checked against; the built-in ones by default. To be called before the first next().
    void setSchema(const Schema& schema) { m_schema = schema; }
    const Schema& getSchema() const { return m_schema; }

    /// For a live receiver: keeps a false header from holding back intact blocks after it. A
    /// candidate that waits for more bytes is given up if a complete block with a correct checksum
    /// lies within the length that it claims, and its number is unknown, its length does not fit
    /// its type, or nothing has arrived for `pause`. The blocks then depend on when the bytes
    /// arrive, so do not use this for a recorded log.
    void setLive(std::chrono::milliseconds pause) { m_longestPause = pause; }

    /// Gets the next block, whose bytes stay valid until the next call; false at the end. Throws
    /// what the source throws.
    virtual bool next(Block& block);

    /// Counts a block that the codec refused with `code` and reports it to the listener. Only for
    /// the last block returned by next().
    void reportUndecodable(const Block& block, int32_t code);

    /// The context in which the last block returned by next() decodes as after all blocks before
    /// it, whether these were decoded or not. The last TOW in it is only meant for this block.
    WeekContext getContext() const;

    /// Name of the file that the last block began in.
    const std::string& getName() const { return m_name; }
    const StreamCounts& getCounts() const { return m_counts; }

protected:
    /// For streams that also get blocks from elsewhere: takes over the counts of that stream,
    /// except for its undecodable blocks, which reportUndecodable() counts.
    void setCounts(const StreamCounts& counts);
    void setName(const std::string& name) { m_name = name; }
    /// As returned by IndexedBlocks::getContext().
    void setContext(const WeekContext& context);

private:
    /// What looked like a block but was not one.
    struct FalseBlock {
        uint64_t offset;
        bool isTooShort; ///< by its length; else its checksum is bad
    };

    void readOn();
    bool passDoubtful();
    bool passAfterPause();
    void closeGap();
    void onChecksumFailed(uint64_t offset) override;
    void onInvalidLength(uint64_t offset) override;
    void onBytesDropped(uint64_t offset, uint64_t count) override;
    void onDroppedPiece(uint64_t offset, const uint8_t* bytes, size_t size) override;
    void onRecognised(const Neighbour& neighbour) override;
    void onDamage(uint64_t offset, uint64_t count) override;

    ByteSource& m_source;
    StreamListener* m_listener;
    Schema m_schema;
    BlockFramer m_framer;
    std::optional<std::chrono::milliseconds> m_longestPause; ///< of a live stream
    NeighbourScanner m_scanner;
    std::deque<FalseBlock> m_falseBlocks; ///< in bytes about which the scanner has yet to decide
    std::vector<uint8_t> m_piece;
    std::string m_name;
    StreamCounts m_counts;
    StreamGap m_gap;
    bool m_ended = false;
    bool m_isCut = false;      ///< the source ended within what looked like a block
    bool m_startsWeek = false; ///< the last block does
    uint8_t m_weekCounter = 0; ///< of a decoding context after it
    uint32_t m_lastTow = 0;    ///< likewise
};

} // namespace tqx
