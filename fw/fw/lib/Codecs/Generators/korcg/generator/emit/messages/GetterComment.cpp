#include "emit/messages/GetterComment.h"

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

/// Breaks `text` into comment lines of at most `textWidth` columns.
std::string commentLines(std::string_view indent, std::string_view text)
{
    const size_t width = textWidth - indent.size() - 4;
    std::string result;
    while (!text.empty()) {
        size_t length = text.size();
        if (length > width) {
            length = text.rfind(' ', width);
            if (length == std::string_view::npos)
                length = std::min(text.find(' '), text.size());
        }
        result += fmt::format("{}/// {}\n", indent, text.substr(0, length));
        text.remove_prefix(std::min(length + 1, text.size()));
    }
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

std::string unitText(const Field& field)
{
    if (field.unit.empty())
        return field.scale ? fmt::format("times {}", *field.scale) : "";
    return field.scale ? fmt::format("in {} {}", *field.scale, field.unit) : "in " + field.unit;
}

std::string valuesText(const Format& format, const Field& field)
{
    const auto table = format.symbols.find(field.symbols);
    if (table == format.symbols.end())
        return "";
    std::string text;
    for (const SymbolicValue& value : table->second.values)
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", value.value, value.name);
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
    if (!text.empty())
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text + '.';
}

} // namespace

std::string getterComment(const Format& format, const RecordType& type, const Field& field)
{
    std::string meaning = withoutStop(field.text);
    if (meaning.empty() && field.isPadding)
        meaning = "padding";
    else if (meaning.empty() && field.role == Role::Reserved)
        meaning = "reserved";
    std::string text =
        joined({meaning, shapeText(type, field), unitText(field),
                field.doNotUse ? numberText(*field.doNotUse) + " when not available" : "",
                valuesText(format, field), presenceText(type, field)});
    const char* plain = field.type == Scalar::Char ? "one character" : "plain number";
    return commentLines("    ", sentence(text.empty() ? plain : text));
}

std::string classComment(const Format& format, const RecordType& type)
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
    return commentLines("", text + '.');
}

} // namespace korcg::generator
