#include "tqx/log/text/CsvText.h"

#include "tqx/log/text/Latin1.h"

#include <algorithm>

namespace tqx::csv
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
    tqx::appendLatin1(out, {text, length});
    quoteFrom(out, start);
}

void appendGuardedLatin1(Buffer& out, const char* text, size_t length)
{
    const size_t start = out.size();
    tqx::appendLatin1(out, {text, length});
    guardFrom(out, start);
    quoteFrom(out, start);
}

void guardFrom(Buffer& out, size_t start)
{
    const std::string content(out.view().substr(start));
    if (content.find_first_of("=+-@\t\r") != 0)
        return;
    out.truncate(start);
    out.append('\'');
    out.append(content);
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

} // namespace tqx::csv
