#include "emit/LongLines.h"

#include <algorithm>
#include <vector>

namespace korcg::generator
{

namespace
{

constexpr size_t textWidth = 100;
constexpr size_t npos = std::string_view::npos;

/// Per column whether it is inside a string or character literal, its closing quote included.
std::vector<bool> literalsOf(std::string_view line)
{
    std::vector<bool> inside(line.size(), false);
    char quote = 0;
    for (size_t i = 0; i < line.size(); ++i) {
        inside[i] = quote != 0;
        if (quote != 0 && line[i] == '\\' && i + 1 < line.size()) {
            inside[++i] = true;
        } else if (quote != 0 && line[i] == quote) {
            quote = 0;
        } else if (quote == 0 && (line[i] == '"' || line[i] == '\'')) {
            quote = line[i];
        }
    }
    return inside;
}

/// Where the rest of a long statement begins, or npos when it cannot be broken: after the last
/// mark that is outside of literals and within the width.
size_t breakOf(std::string_view line, const std::vector<bool>& inside, size_t indent)
{
    for (const std::string_view mark : {", ", " = ", "(", "{", "* ", "> ", "::"}) {
        size_t found = line.rfind(mark, textWidth - mark.size());
        for (; found != npos && found > indent; found = line.rfind(mark, found - 1)) {
            const size_t rest = found + mark.size();
            if (rest < line.size() && !inside[found] && line[rest] != ')' && line[rest] != '}')
                return rest;
        }
    }
    return npos;
}

/// The text before `at` and after it, without the blanks between.
std::pair<std::string_view, std::string_view> cut(std::string_view line, size_t at)
{
    std::string_view head = line.substr(0, at);
    head = head.substr(0, head.find_last_not_of(' ') + 1);
    std::string_view rest = line.substr(at);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    return {head, rest};
}

void appendComment(std::string& result, std::string_view line, size_t indent)
{
    const size_t words = line.find_first_not_of("/ ", indent);
    const std::string mark(line.substr(0, words == npos ? line.size() : words));
    std::string rest(line);
    while (rest.size() > textWidth) {
        size_t at = rest.rfind(' ', textWidth);
        if (at == npos || at < mark.size())
            at = rest.find(' ', mark.size());
        if (at == npos)
            break;
        const auto [head, tail] = cut(rest, at);
        result.append(head) += '\n';
        rest = mark + std::string(tail);
    }
    result.append(rest) += '\n';
}

/// Breaks a literal that reaches beyond the width at a blank; false when there is none.
bool splitLiteral(std::string_view line, const std::vector<bool>& inside, size_t indent,
                  std::string* head, std::string* rest)
{
    const size_t blank = line.rfind(' ', textWidth - 2);
    if (blank == npos || blank <= indent || !inside[blank] || !inside[textWidth - 1])
        return false;
    *head = std::string(line.substr(0, blank + 1)) + '"';
    *rest = '"' + std::string(line.substr(blank + 1));
    return true;
}

void appendStatement(std::string& result, std::string line, size_t indent)
{
    std::string deeper(indent + (line.compare(indent, 2, ": ") == 0 ? 2 : 4), ' ');
    // The type that a function returns, and the function.
    if (indent == 0 && line.size() > textWidth && line.back() != ';') {
        const size_t name = line.rfind(' ', line.find('('));
        if (name != npos && name > 0 && (line[name - 1] == '*' || line[name - 1] == '>') &&
            line.size() - name <= textWidth) {
            result.append(line, 0, name) += '\n';
            line.erase(0, name + 1);
        }
    }
    while (line.size() > textWidth) {
        const std::vector<bool> inside = literalsOf(line);
        const size_t start = line.find_first_not_of(' ');
        const size_t at = breakOf(line, inside, start);
        std::string head;
        std::string rest;
        if (at != npos) {
            const auto [before, after] = cut(line, at);
            head = before;
            rest = after;
        } else if (!splitLiteral(line, inside, start, &head, &rest)) {
            break;
        }
        result.append(head) += '\n';
        line = deeper + rest;
    }
    result.append(line) += '\n';
}

void appendLine(std::string& result, std::string_view line)
{
    const size_t indent = std::min(line.find_first_not_of(' '), line.size());
    const std::string_view words = line.substr(indent);
    if (line.size() <= textWidth || words.substr(0, 1) == "#" || line.back() == '\\') {
        result.append(line) += '\n';
    } else if (words.substr(0, 2) == "//") {
        appendComment(result, line, indent);
    } else {
        appendStatement(result, std::string(line), indent);
    }
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
