#include "CsvText.h"

#include <algorithm>

namespace tool::csv
{

std::string cell(std::string_view characters)
{
    if (characters.find_first_of(",\"\r\n") == std::string_view::npos)
        return std::string(characters);
    std::string quoted = "\"";
    for (const char character : characters)
        quoted.append(character == '"' ? 2 : 1, character);
    return quoted + '"';
}

void appendLatin1(Buffer& out, const char* text, size_t length)
{
    const size_t start = out.size();
    for (size_t i = 0; i < length; ++i) {
        const auto character = static_cast<unsigned char>(text[i]);
        if (character >= 0x80) {
            out.append(static_cast<char>(0xc0U | character >> 6U));
            out.append(static_cast<char>(0x80U | (character & 0x3fU)));
        } else {
            out.append(text[i]);
        }
    }
    quoteFrom(out, start);
}

void quoteFrom(Buffer& out, size_t start)
{
    const std::string_view content = out.view().substr(start);
    if (content.find_first_of(",\"\r\n") == std::string_view::npos)
        return;
    const std::string quoted = cell(content);
    out.truncate(start);
    out.append(quoted);
}

} // namespace tool::csv
