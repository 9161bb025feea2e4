#pragma once

#include <string>
#include <string_view>

namespace korcg::generator
{

/// Whether the text can be a C++ identifier: letters, digits and underscores, no digit first, no
/// keyword.
bool isIdentifier(std::string_view text);

bool isKeyword(std::string_view text);

} // namespace korcg::generator
