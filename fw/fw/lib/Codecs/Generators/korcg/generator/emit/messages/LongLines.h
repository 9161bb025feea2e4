#pragma once

#include <string>
#include <string_view>

namespace korcg::generator
{

/// Breaks generated code lines of more than 100 columns behind a comma, an equals sign or an
/// opening bracket. Comments are left alone.
std::string wrapLongLines(std::string_view text);

} // namespace korcg::generator
