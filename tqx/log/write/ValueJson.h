#pragma once

#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/text/Buffer.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace tqx
{

struct ValuePlan;

/// Writes blocks as JSON Lines of the values that they stand for, in terms of the metadata:
///
///     {"block":"<name>","fields":{"TOW":604000.1,"Type1":[{"SVID":"G05",...}],...}}
///
/// Integers are multiplied by their scale factor, values with a name are that name, values that
/// are not available are null; packed words stand beside the values they are packed from. Absent
/// fields are left out, sub-blocks are objects in arrays, or one object where there is never more.
///
/// The values come straight from the records, which is several times as fast as asking the field
/// metadata for each.
class ValueJson
{
public:
    explicit ValueJson(const FieldFilter& filter);
    ~ValueJson();
    ValueJson(const ValueJson&) = delete;
    ValueJson& operator=(const ValueJson&) = delete;

    /// Appends the line of a decoded main block. Nothing when its type has no message class or the
    /// filter shows no field of it.
    void write(Buffer& out, const void* record);

private:
    ValuePlan& planOf(uint32_t recordType);

    const FieldFilter& filter;
    std::vector<std::unique_ptr<ValuePlan>> plans; ///< by record type
};

} // namespace tqx
