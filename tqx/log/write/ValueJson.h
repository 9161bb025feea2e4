#pragma once

#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

struct ValuePlan;

/// Writes blocks as JSON Lines of the values that they mean, in terms of the metadata:
///
///     {"block":"<name>","time":{"scale":"GPS","gnss":"2024-02-10T23:46:40.100",
///      "utc":"2024-02-10T23:46:22.100Z"},"fields":{"TOW":604000.1,"Type1":[{"SVID":"G05",...}],...}}
///
/// The time is that of the block's header, null when the header has none. Fields are in the order
/// of the filter.
///
/// Integers are multiplied by their scale factor, values with a name are that name, values that
/// are not available are null; packed words appear beside the values they contain. Absent fields
/// are left out, sub-blocks are objects in arrays, or one object where there is never more.
///
/// The values come straight from the records, which is several times as fast as asking the field
/// metadata for each. Used by one thread at a time. Throws std::bad_alloc when there is no memory
/// to append to.
class TQX_LOG_API ValueJson
{
public:
    /// The style matters only for whether angles are in degrees. The filter must outlive this
    /// object.
    explicit ValueJson(const FieldFilter& filter, const ValueStyle& style = {});
    ~ValueJson();
    ValueJson(const ValueJson&) = delete;
    ValueJson& operator=(const ValueJson&) = delete;

    /// Appends the line of a block that decoded. Without a message class it has bytes instead of
    /// fields, see writeBytes(). Appends nothing when the filter shows no field of its type.
    void write(Buffer& out, const DecodedBlock& decoded);

    /// Appends the line of a block whose fields are unknown, unless there is a filter:
    ///
    ///     {"number":8191,"time":{...},"bytes":"JEAi..."}
    ///
    /// in base64; for one that did not decode, with its name and the codec's result after the
    /// time, "name":"<name>","error":{"code":-1855,"name":"TQX_ERR_..."}.
    void writeBytes(Buffer& out, const DecodedBlock& decoded);

private:
    ValuePlan& planOf(uint32_t recordType);
    void appendTime(Buffer& out, const Block& block);

    const FieldFilter& m_filter;
    ValueStyle m_style;
    std::vector<std::unique_ptr<ValuePlan>> m_plans; ///< by record type
    std::optional<GnssMillis> m_lastTime;            ///< the blocks of an epoch share it
    std::string m_lastTimeText;
};

} // namespace tqx
