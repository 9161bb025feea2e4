#include "emit/messages/GetterComment.h"

#include "model/Availability.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

namespace korcg::generator
{

namespace
{

constexpr size_t textWidth = 100;
constexpr size_t longestValueList = 120;

/// Stands for a blank at which no line is broken.
constexpr char firmBlank = '\x1f';

/// Breaks `text` into lines of at most `textWidth` columns behind `mark`; none for an empty text.
std::string commentLines(std::string_view mark, std::string_view text)
{
    const size_t width = textWidth - mark.size();
    std::string result;
    while (!text.empty()) {
        size_t length = text.size();
        if (length > width) {
            length = text.rfind(' ', width);
            if (length == std::string_view::npos)
                length = std::min(text.find(' '), text.size());
        }
        result += fmt::format("{}{}\n", mark, text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    std::replace(result.begin(), result.end(), firmBlank, ' ');
    return result;
}

std::string withoutStop(std::string text)
{
    while (!text.empty() && (text.back() == '.' || text.back() == ' '))
        text.pop_back();
    return text;
}

std::string numberText(const Number& number)
{
    return std::visit([](auto value) { return fmt::format("{}", value); }, number);
}

std::string bitsText(const RecordType& type, const Field& field)
{
    const std::string& word = type.fields[static_cast<size_t>(field.parent)].name;
    if (field.width == 1)
        return fmt::format("bit {} of {}", field.shift, word);
    return fmt::format("bits {} to {} of {}", field.shift, field.shift + field.width - 1, word);
}

/// What kind of thing the field is, where its getters do not tell it.
std::string shapeText(const RecordType& type, const Field& field)
{
    const auto counter = [&] { return type.fields[static_cast<size_t>(field.count)].name; };
    switch (field.kind) {
    case FieldKind::Bits:
        return bitsText(type, field);
    case FieldKind::Derived:
        return "computed by the decoder";
    case FieldKind::Array:
        return field.elements == 1 ? "1 element" : fmt::format("{} elements", field.elements);
    case FieldKind::CountedArray:
        return fmt::format("at most {} elements, {} of them are used", field.elements,
                           field.countsBytes ? counter() + " bytes" : counter());
    case FieldKind::Text:
        return fmt::format("text of {} characters and a terminating zero", field.elements);
    case FieldKind::CountedText:
        return fmt::format("text of {} characters, at most {}, and a terminating zero", counter(),
                           field.elements);
    case FieldKind::Blocks:
        return fmt::format("{} sub-blocks, owned by this message", counter());
    case FieldKind::Embedded:
        return "sub-block, owned by this message";
    case FieldKind::Value:
        break;
    }
    return "";
}

/// What the field is for: as the description tells it, or as others make use of it.
std::string meaningText(const RecordType& type, const Field& field)
{
    if (!field.text.empty())
        return withoutStop(field.text);
    if (field.isPadding)
        return "padding";
    if (field.role == Role::Reserved)
        return "reserved";
    for (const Field& user : type.fields) {
        const auto isThis = [&](int row) {
            return row >= 0 && &type.fields[static_cast<size_t>(row)] == &field;
        };
        const bool isBlocks = user.kind == FieldKind::Blocks;
        if (isThis(user.count))
            return isBlocks ? "number of " + user.name + " sub-blocks" : "length of " + user.name;
        if (isThis(user.length) && !user.lengthInMain)
            return isBlocks ? "length of a " + user.name + " sub-block" : "length of " + user.name;
    }
    return "";
}

std::string unitText(const Field& field)
{
    if (field.unit.empty())
        return field.scale ? fmt::format("times {}", *field.scale) : "";
    return field.scale ? fmt::format("unit {} {}", *field.scale, field.unit) : "unit " + field.unit;
}

std::string valuesText(const Format& format, const Field& field)
{
    const auto table = format.symbols.find(field.symbols);
    if (table == format.symbols.end())
        return "";
    std::string text;
    for (const SymbolicValue& value : table->second.values)
        text +=
            fmt::format("{}{}{}{}", text.empty() ? "" : ", ", value.value, firmBlank, value.name);
    return text.size() <= longestValueList ? text : "named values: " + field.symbols;
}

std::string presenceText(const RecordType& type, const Field& field)
{
    switch (field.presence) {
    case Presence::SinceRevision:
        return fmt::format("from revision {} on", field.presenceValue);
    case Presence::OnlyRevision:
        return fmt::format("revision {} only", field.presenceValue);
    case Presence::Selected:
        return fmt::format("when {} is {}", type.fields[static_cast<size_t>(field.selector)].name,
                           field.presenceValue);
    case Presence::Always:
        break;
    }
    return "";
}

std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts)
        if (!part.empty())
            text += (text.empty() ? "" : "; ") + part;
    return text;
}

std::string sentence(std::string text)
{
    if (text.empty())
        return text;
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text + '.';
}

} // namespace

std::string getterComment(const Format& format, const RecordType& type, const Field& field)
{
    const std::string missing =
        field.doNotUse ? numberText(*field.doNotUse) + " when not available" : "";
    return commentLines("    /// ",
                        sentence(joined({meaningText(type, field), shapeText(type, field),
                                         unitText(field), missing, neededText(format, type, field),
                                         valuesText(format, field), presenceText(type, field)})));
}

std::string classComment(std::string_view mark, const Format& format, const RecordType& type)
{
    std::string text;
    if (type.isMain()) {
        text = fmt::format("{}, block {}", type.name, type.number);
    } else {
        std::string owners;
        for (const int owner : type.owners)
            owners +=
                (owners.empty() ? "" : " and ") + format.types[static_cast<size_t>(owner)].name;
        text = owners.empty() ? type.name + ", a sub-block"
                              : fmt::format("{}, a sub-block of {}", type.name, owners);
    }
    if (!type.text.empty())
        text += ": " + withoutStop(type.text);
    return commentLines(mark, text + '.');
}

} // namespace korcg::generator
