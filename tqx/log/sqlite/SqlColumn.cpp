#include "tqx/log/sqlite/SqlColumn.h"

#include <algorithm>

namespace tqx
{

namespace
{

bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

std::string lowerCase(std::string text)
{
    for (char& character : text) {
        if (character >= 'A' && character <= 'Z')
            character = static_cast<char>(character - 'A' + 'a');
    }
    return text;
}

} // namespace

std::string SqlNames::take(std::string_view wanted)
{
    std::string plain(wanted);
    std::replace_if(
        plain.begin(), plain.end(),
        [](char character) { return !isLetter(character) && !isDigit(character); }, '_');
    if (plain.empty() || isDigit(plain.front()))
        plain.insert(plain.begin(), '_');
    std::string name = plain;
    for (unsigned number = 2; !m_taken.insert(lowerCase(name)).second; ++number)
        name = plain + '_' + std::to_string(number);
    return name;
}

std::string quotedSql(std::string_view name)
{
    std::string quoted = "\"";
    for (const char character : name)
        quoted.append(character == '"' ? 2 : 1, character);
    return quoted + '"';
}

} // namespace tqx
