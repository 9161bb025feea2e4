#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace tqx
{

/// Decodes standard base64 with its padding; appends to `bytes`. False when the text is not
/// base64; then what was appended is unspecified.
bool decodeBase64(std::string_view text, std::vector<uint8_t>& bytes);

} // namespace tqx
