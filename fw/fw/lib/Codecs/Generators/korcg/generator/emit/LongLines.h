#pragma once

#include <string>
#include <string_view>

namespace korcg::generator
{

/// Breaks lines of C++ that are longer than 100 columns: comments and string literals at a blank,
/// statements after a comma, an assignment or an opening bracket, declarations after the return
/// type. Continued lines are indented by four more columns than the first. Preprocessor lines, and
/// lines without a place to break, stay as they are.
std::string wrapLongLines(std::string_view text);

} // namespace korcg::generator
