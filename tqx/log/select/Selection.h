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

/// What to select; see SelectionOptions for the texts.
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

/// Decides which blocks of a stream a command processes. Blocks are tested in stream order; several
/// inputs count as one stream. Used by one thread at a time.
class TQX_LOG_API Selection
{
public:
    /// Throws DataError for an invalid request.
    explicit Selection(const SelectionRequest& request);

    /// The types only, without times and conditions.
    const TypeSelection& getTypes() const { return m_types; }

    /// Whether the block is selected. A block that has to be decoded for this, and does not decode,
    /// is reported to the stream and not selected. Throws std::bad_alloc.
    bool accepts(BlockStream& stream, const Block& block);

    /// The same for a block whose type and time are known to be selected, as an index finds it. Not
    /// for a selection with an interval, and not to be mixed with accepts().
    bool acceptsFound(BlockStream& stream, const Block& block);

    /// The times between which blocks are selected; nothing means no limit.
    const std::optional<GnssMillis>& getFrom() const { return m_from; }
    const std::optional<GnssMillis>& getTo() const { return m_to; }

    /// Whether only blocks at multiples of an interval are selected.
    bool hasInterval() const { return m_interval != 1; }

    /// Whether data without a time of its own that follows the last block is within the selected
    /// times.
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
