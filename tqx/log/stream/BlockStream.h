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
    uint64_t undecodable = 0;    ///< valid blocks of known types that do not decode
    std::array<NeighbourCount, neighbourKinds> neighbours; ///< by NeighbourKind

    const NeighbourCount& of(NeighbourKind kind) const
    {
        return neighbours[static_cast<size_t>(kind)];
    }

    /// Neighbours are no damage.
    bool isDamaged() const { return droppedBytes != 0 || undecodable != 0; }
};

/// The valid blocks of a source, in order. Whatever else is in it goes to a listener. What looks
/// like the start of a block within a neighbour is no error. Works in constant memory.
class TQX_LOG_API BlockStream : private BlockFramer::Listener, private NeighbourScanner::Listener
{
public:
    /// Neither is owned, both must outlive the stream; the listener may be null.
    explicit BlockStream(ByteSource& source, StreamListener* listener = nullptr);
    virtual ~BlockStream();
    BlockStream(const BlockStream&) = delete;
    BlockStream& operator=(const BlockStream&) = delete;

    /// The types that move the week of getContext() and that the headers of a live source are
    /// checked by; without, the built ones. Before the first block is gotten.
    void setSchema(const Schema& schema) { m_schema = schema; }
    const Schema& getSchema() const { return m_schema; }

    /// For a source that is a receiver while it sends: does not let a false header hold back what
    /// is intact after it. A candidate for a block that waits for more bytes is given up, if a
    /// whole block with the right checksum is within the length that it claims, when its number is
    /// unknown or its length does not fit its type, or when nothing has come for `pause`. The
    /// blocks then depend on when the bytes come, so that a recorded log is better read without.
    void setLive(std::chrono::milliseconds pause) { m_longestPause = pause; }

    /// Gets the next block, whose bytes stay valid until the next call; false at the end. Throws
    /// what the source throws.
    virtual bool next(Block& block);

    /// Counts a block that the codec refused with `code` and reports it to the listener. Only for
    /// the last block gotten.
    void reportUndecodable(const Block& block, int32_t code);

    /// What to give a context for the last block gotten to decode as after all blocks before it,
    /// whether these were decoded or not. Of the last TOW only what matters for this block is true.
    WeekContext getContext() const;

    /// Name of the file that the last block began in.
    const std::string& getName() const { return m_name; }
    const StreamCounts& getCounts() const { return m_counts; }

protected:
    /// For streams that have blocks from elsewhere, too: takes over what is known of that stream
    /// but for its undecodable blocks, which reportUndecodable() counts.
    void setCounts(const StreamCounts& counts);
    void setName(const std::string& name) { m_name = name; }
    /// As IndexedBlocks::getContext() gives it.
    void setContext(const WeekContext& context);

private:
    /// What looked like a block and was none.
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
    std::deque<FalseBlock> m_falseBlocks; ///< in bytes of which the scanner has still to decide
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
