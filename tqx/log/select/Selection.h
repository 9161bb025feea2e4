#pragma once

#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/select/Condition.h"
#include "tqx/log/select/TypeSelection.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// What is asked of blocks; see SelectionOptions for what the texts are.
struct SelectionRequest {
    std::vector<std::string> types;
    std::vector<std::string> notTypes;
    std::string from;
    std::string to;
    std::string where;
    uint32_t every = 1;
    double interval = 0; ///< seconds, whole milliseconds up to a week; 0 selects all times
    Schema schema = {};  ///< whose types and fields are named
};

/// Which blocks of a stream a command looks at. Looks at them in stream order, and runs on over the
/// inputs as if they were one. Used by one thread at a time.
class TQX_LOG_API Selection
{
public:
    /// Throws DataError for anything in the request that makes no sense.
    explicit Selection(const SelectionRequest& request);

    /// The types alone, without times and conditions.
    const TypeSelection& getTypes() const { return m_types; }

    /// Whether the block is selected. One that must be decoded to know and does not decode is
    /// reported to the stream and not selected. Throws std::bad_alloc when there is no memory to
    /// decode it.
    bool accepts(BlockStream& stream, const Block& block);

    /// The same for a block that is known to be of the types and in the time, as an index finds it.
    /// Not for a selection with an interval, and not beside accepts().
    bool acceptsFound(BlockStream& stream, const Block& block);

    /// The times between which blocks are selected, nothing for no limit.
    const std::optional<GnssMillis>& getFrom() const { return m_from; }
    const std::optional<GnssMillis>& getTo() const { return m_to; }

    /// Whether only blocks at multiples of some time are selected.
    bool hasInterval() const { return m_interval != 1; }

    /// Whether what follows the last block, and has no time of its own, is at a time that is
    /// wanted.
    bool isInTime() const;

private:
    bool isInTime(const Block& block);
    bool meetsCondition(BlockStream& stream, const Block& block);

    TypeSelection m_types;
    std::optional<GnssMillis> m_from;
    std::optional<GnssMillis> m_to;
    GnssMillis m_interval;            ///< 1 for all times
    std::optional<GnssMillis> m_time; ///< of the last block that had one
    std::unique_ptr<Condition> m_condition;
    std::unique_ptr<RecordDecoder> m_decoder; ///< beside a condition
    uint32_t m_every;
    std::vector<uint32_t> m_sinceLast; ///< by block number
};

} // namespace tqx
