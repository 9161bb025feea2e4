#pragma once

#include "Buffer.h"
#include "FieldFilter.h"

#include <map>
#include <memory>

class Message;
class MessageInfo;

namespace tool
{

struct ValuePlan;

/// Writes messages as JSON Lines of the values that they stand for, read through the metadata:
///
///     {"block":"<name>","fields":{"TOW":604000.1,"Type1":[{"SVID":"G05",...}],...}}
///
/// Integers are multiplied by their scale factor, values with a name are that name, values that
/// are not available are null; packed words stand beside the values they are packed from. Absent
/// fields are left out, sub-blocks are objects in arrays, or one object where there is never more.
class ValueJson
{
public:
    explicit ValueJson(const FieldFilter& filter);
    ~ValueJson();
    ValueJson(const ValueJson&) = delete;
    ValueJson& operator=(const ValueJson&) = delete;

    /// Appends the message's line. Nothing when the filter shows no field of its type.
    void write(Buffer& out, const Message& message);

private:
    const FieldFilter& filter;
    std::map<const MessageInfo*, std::unique_ptr<ValuePlan>> plans;
};

} // namespace tool
