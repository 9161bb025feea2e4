#include "emit/messages/LongLines.h"

#include <algorithm>

namespace korcg::generator
{

namespace
{

constexpr size_t textWidth = 100;

/// Where the rest of a long line begins, or npos when it cannot be broken.
size_t breakOf(std::string_view line)
{
    for (const std::string_view mark : {", ", " = ", "("}) {
        const size_t found = line.rfind(mark, textWidth - mark.size());
        if (found != std::string_view::npos)
            return found + mark.size();
    }
    return std::string_view::npos;
}

void appendLine(std::string& result, std::string_view line)
{
    const size_t indent = line.find_first_not_of(' ');
    const bool isCode = indent != std::string_view::npos && line.substr(indent, 2) != "//";
    const size_t rest = line.size() > textWidth && isCode ? breakOf(line) : std::string_view::npos;
    if (rest == std::string_view::npos || rest <= indent) {
        result.append(line) += '\n';
        return;
    }
    std::string_view head = line.substr(0, rest);
    head = head.substr(0, head.find_last_not_of(' ') + 1);
    result.append(head) += '\n';
    const size_t deeper = line.substr(indent, 2) == ": " ? 2 : 4;
    appendLine(result, std::string(indent + deeper, ' ').append(line.substr(rest)));
}

} // namespace

std::string wrapLongLines(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        appendLine(result, text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

} // namespace korcg::generator
