#pragma once

#include <cstdint>
#include <string_view>

namespace tqx
{

/// The name of a value of an integer field of a record type, empty when it has none.
std::string_view valueName(uint32_t recordType, std::string_view field, int64_t value);

} // namespace tqx
