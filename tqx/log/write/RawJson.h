#pragma once

#include "TQX_RecordAccess.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>
#include <vector>

namespace tqx
{

struct RawPlan;

/// Writes blocks as JSON Lines of their stored values, the form that `tqx encode` reads:
///
///     {"block":"<name>","fields":{"Sync1":"$",...,"WNc":2300}}
///
/// Every field that has bytes of its own in the block is there; absent ones are left out, and
/// so is padding that holds zeros. A block that cannot be restored byte for byte from its fields
/// also has a member "bytes"; a block that has no message class, has an unknown number or does not
/// decode has only that: {"number":4213,"bytes":"..."}.
///
/// Used by one thread at a time. Throws std::bad_alloc when there is no memory to append to.
class TQX_LOG_API RawJson
{
public:
    /// With a filter that does not show everything, "bytes" is never written: such lines are not
    /// meant to be encoded again.
    explicit RawJson(const FieldFilter& filter);
    ~RawJson();
    RawJson(const RawJson&) = delete;
    RawJson& operator=(const RawJson&) = delete;

    /// Appends the line of a block that decoded. Appends nothing when the filter shows no field of
    /// its type.
    void write(Buffer& out, const DecodedBlock& decoded);

    /// Appends a line with only the bytes. Appends nothing when there is a filter.
    void writeBytes(Buffer& out, const Block& block) const;

private:
    RawPlan& planOf(uint32_t recordType);

    const FieldFilter& m_filter;
    std::vector<std::unique_ptr<RawPlan>> m_plans;
    std::vector<uint8_t> m_encoded;
};

} // namespace tqx
