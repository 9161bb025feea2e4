#pragma once

#include "tqx/log/read/JsonValue.h"
#include "tqx/log/schema/Schema.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tqx
{

/// Compares what a line of JSON says about a block with the bytes given beside it. Returns the name
/// of the first thing that differs, "" when nothing does. `name` is the block's name, `fields` an
/// object of stored values; either may be null. Fields that are left out are not compared, nor are
/// named bit ranges, whose packed word is.
std::string differenceFromBytes(const JsonValue* name, const JsonValue* fields,
                                const std::vector<uint8_t>& bytes, const Schema& schema);

} // namespace tqx
