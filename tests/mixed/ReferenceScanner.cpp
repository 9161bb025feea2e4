#include "ReferenceScanner.h"

#include "MixedBytes.h"

#include <algorithm>
#include <regex>
#include <string>
#include <string_view>

namespace
{

using std::string_view;

/// Size of what a pattern matches at the beginning of the text, 0 for nothing.
size_t match(string_view text, const std::regex& pattern)
{
    std::cmatch found;
    const bool isFound = std::regex_search(text.data(), text.data() + text.size(), found, pattern,
                                           std::regex_constants::match_continuous);
    return isFound ? static_cast<size_t>(found.length()) : 0;
}

bool beginsWith(string_view text, string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

bool isPrintable(char character)
{
    return character == '\t' || (character >= ' ' && character <= '~');
}

/// The line that the text begins with, "" if it is none.
string_view lineOf(string_view text)
{
    const auto length =
        static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isPrintable) - text.begin());
    const bool isLine = length <= 998 && beginsWith(text.substr(length), "\r\n");
    return isLine ? text.substr(0, length + 2) : "";
}

bool isRightSentence(string_view line)
{
    static const std::regex shape(R"([$!][A-Z][A-Z0-9]{2,14}(,[^$!]*)?\*[0-9A-Fa-f]{2}\r\n)");
    if (line.empty() || match(line, shape) == 0)
        return false;
    const size_t end = line.size() - 5;
    unsigned sum = 0;
    for (const char character : line.substr(1, end - 1))
        sum ^= static_cast<uint8_t>(character);
    return std::stoul(std::string(line.substr(end + 1, 2)), nullptr, 16) == sum;
}

bool endsLikeSentence(string_view line)
{
    static const std::regex shape(R"(\*[0-9A-Fa-f]{2}\r\n)");
    return line.size() > 5 && match(line.substr(line.size() - 5), shape) != 0;
}

/// Whether some later part of the line is a sentence.
bool holdsSentence(string_view line)
{
    for (size_t at = 1; at < line.size(); ++at) {
        if ((line[at] == '$' || line[at] == '!') && isRightSentence(line.substr(at)))
            return true;
    }
    return false;
}

size_t sentenceSize(string_view text)
{
    const bool mayBe = text[0] == '$' || text[0] == '!';
    const string_view line = mayBe ? lineOf(text) : "";
    return isRightSentence(line) ? line.size() : 0;
}

size_t frameSize(string_view text)
{
    const auto at = [&text](size_t i) { return static_cast<uint8_t>(text[i]); };
    if (text.size() < 6 || at(0) != 0xd3 || at(1) > 3)
        return 0;
    const size_t size = 6 + at(1) * size_t{256} + at(2);
    const bool isFrame = size <= text.size() && slowCrc24({text.begin(), text.begin() + size}) == 0;
    return isFrame ? size : 0;
}

size_t emptyLines(string_view text)
{
    static const std::regex shape("(\r\n){1,8}");
    return match(text, shape);
}

size_t textSize(string_view text, bool isWithinText)
{
    static const std::regex promptShape("([A-Z]{2}[0-9]{2}|[A-Z]{3}[0-9])>");
    if (isWithinText && beginsWith(text, "\r\n"))
        return 2;
    const size_t empty = emptyLines(text);
    const string_view rest = text.substr(empty);
    if (const size_t prompt = match(rest, promptShape))
        return empty + prompt;
    const string_view line = lineOf(rest);
    const bool isText = line.size() >= (isWithinText ? 3U : 6U) && !beginsWith(line, "$@") &&
                        !endsLikeSentence(line) && !holdsSentence(line);
    return isText ? empty + line.size() : 0;
}

/// Size of the damage that the text begins with and a line may begin after, else 0.
size_t damagedLine(string_view text, bool isLineStart)
{
    const string_view line = lineOf(text);
    if (!endsLikeSentence(line))
        return isLineStart ? emptyLines(text) : 0;
    if (isLineStart)
        return holdsSentence(line) ? 0 : line.size();
    const bool isAlone = line.find_first_of("$!", 1) == string_view::npos;
    const bool mayBe = (line[0] == '$' || line[0] == '!') && line[1] >= 'A' && line[1] <= 'Z';
    return mayBe && isAlone ? line.size() : 0;
}

} // namespace

void addPart(Parts& parts, const tqx::Neighbour& neighbour)
{
    parts.push_back({neighbour.offset, neighbour.size, "NRA"[static_cast<size_t>(neighbour.kind)]});
}

void addDamage(Parts& parts, uint64_t offset, uint64_t size)
{
    const bool goesOn = !parts.empty() && parts.back().kind == '-' &&
                        parts.back().offset + parts.back().size == offset;
    if (goesOn) {
        parts.back().size += size;
    } else {
        parts.push_back({offset, size, '-'});
    }
}

bool operator==(const Part& left, const Part& right)
{
    return left.offset == right.offset && left.size == right.size && left.kind == right.kind;
}

std::ostream& operator<<(std::ostream& out, const Part& part)
{
    return out << part.kind << ' ' << part.offset << '+' << part.size;
}

Parts referenceParts(const Bytes& run)
{
    const std::string all(run.begin(), run.end());
    Parts parts;
    bool isLineStart = true;
    for (size_t at = 0; at < all.size();) {
        const string_view rest = string_view(all).substr(at);
        const bool isWithinText = isLineStart && !parts.empty() && parts.back().kind == 'A';
        Part part = {at, sentenceSize(rest), 'N'};
        if (part.size == 0)
            part = {at, frameSize(rest), 'R'};
        if (part.size == 0 && isLineStart)
            part = {at, textSize(rest, isWithinText), 'A'};
        if (part.size != 0) {
            parts.push_back(part);
            isLineStart = true;
        } else {
            const size_t line = damagedLine(rest, isLineStart);
            isLineStart = line != 0;
            part.size = std::max<size_t>(line, 1);
            addDamage(parts, at, part.size);
        }
        at += part.size;
    }
    return parts;
}
