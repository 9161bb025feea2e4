#pragma once

#include "tqx/log/read/JsonValue.h"
#include "tqx/log/schema/Schema.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// Compares what a line of JSON says of a block with the bytes that are given beside it. Returns
/// the name of the first thing in which they differ, "" when there is none. `name` is the block's
/// name, `fields` an object of stored values; either may be null. Fields that are left out do not
/// count, nor do named bit ranges, whose packed word does.
std::string differenceFromBytes(const JsonValue* name, const JsonValue* fields,
                                const std::vector<uint8_t>& bytes, const Schema& schema);

} // namespace tqx
