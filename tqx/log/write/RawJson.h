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
/// so is padding that holds zeros. A block that its fields alone would not bring back byte for
/// byte has a member "bytes" as well, and a block without message class, of an unknown number or
/// that does not decode has nothing else: {"number":4213,"bytes":"..."}.
///
/// Used by one thread at a time. What cannot be appended for want of memory throws std::bad_alloc.
class TQX_LOG_API RawJson
{
public:
    /// With a filter that does not show everything, "bytes" is never written: such lines are not
    /// meant to be encoded again.
    explicit RawJson(const FieldFilter& filter);
    ~RawJson();
    RawJson(const RawJson&) = delete;
    RawJson& operator=(const RawJson&) = delete;

    /// Appends the line of a block that decoded. Nothing when the filter shows no field of its
    /// type.
    void write(Buffer& out, const DecodedBlock& decoded);

    /// Appends the line that has only the bytes. Nothing when there is a filter.
    void writeBytes(Buffer& out, const Block& block) const;

private:
    RawPlan& planOf(uint32_t recordType);

    const FieldFilter& m_filter;
    std::vector<std::unique_ptr<RawPlan>> m_plans;
    std::vector<uint8_t> m_encoded;
};

} // namespace tqx
