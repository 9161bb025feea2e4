#include "emit/messages/GetterComment.h"

#include "emit/messages/ValueText.h"
#include "model/Availability.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string_view>

namespace korcg::generator
{

namespace
{

constexpr size_t textWidth = 100;

/// Breaks `text` into lines of at most `textWidth` columns, each after `mark`; none for an empty
/// text.
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

/// What kind of thing the field is, where its getters do not show it.
std::string shapeText(const RecordType& type, const Field& field)
{
    if (field.kind == FieldKind::Derived)
        return "computed by the decoder";
    if (field.kind != FieldKind::Bits)
        return "";
    const std::string& word = type.fields[static_cast<size_t>(field.parent)].name;
    if (field.summary != Summary::None)
        return "computed from other bits of " + word;
    if (field.width == 1)
        return fmt::format("bit {} of {}", field.shift, word);
    return fmt::format("bits {} to {} of {}", field.shift, field.shift + field.width - 1, word);
}

std::string presenceText(const RecordType& type, const Field& field)
{
    switch (field.presence) {
    case Presence::SinceRevision:
        return fmt::format("from revision {} on", field.presenceValue);
    case Presence::OnlyRevision:
        return fmt::format("in revision {} only", field.presenceValue);
    case Presence::Selected:
        return fmt::format("when {} is {}", type.fields[static_cast<size_t>(field.selector)].name,
                           field.presenceValue);
    case Presence::Always:
        break;
    }
    return "";
}

std::string absenceText(const RecordType& type, const Field& field)
{
    const std::string presence = presenceText(type, field);
    return presence.empty() ? "" : presence + ", else absent: throws MessageApiEvent";
}

/// How many elements a repeated field has.
std::string countText(const RecordType& type, const Field& field)
{
    const Field& array =
        field.kind == FieldKind::Bits ? type.fields[static_cast<size_t>(field.parent)] : field;
    const auto counter = [&] {
        const std::string& name = type.fields[static_cast<size_t>(array.count)].name;
        const int bytes = array.countsBytes ? bytesOf(array.type) : 1;
        return bytes > 1 ? fmt::format("{} divided by {}", name, bytes) : name;
    };
    switch (array.kind) {
    case FieldKind::CountedArray:
        return fmt::format("number of elements: {}, at most {}", counter(), array.elements);
    case FieldKind::Text:
        return fmt::format("number of characters, a terminating zero included: {}",
                           array.elements + 1);
    case FieldKind::CountedText:
        return fmt::format("number of characters: {}, at most {}, and a terminating zero",
                           counter(), array.elements);
    case FieldKind::Blocks:
        return fmt::format("number of sub-blocks, from {}", counter());
    default:
        return fmt::format("number of elements: {}", array.elements);
    }
}

std::string commentText(const Format& format, const RecordType& type, const Field& field,
                        Getter getter)
{
    const std::string name = identifier(field.name);
    const auto facts = [&] {
        return joined({meaningText(format, type, field), shapeText(type, field),
                       valueText(format, type, field), neededText(format, type, field)});
    };
    const std::string beyond =
        fmt::format("throws MessageApiEvent unless `index` is below getNumberOf{}()", name);
    switch (getter) {
    case Getter::Presence:
        return "whether the field is there: " + presenceText(type, field);
    case Getter::Value: {
        const std::string known = facts();
        return joined({known.empty() ? "a character" : known, absenceText(type, field)});
    }
    case Getter::Element:
        return joined({facts(), field.isText() ? "character `index`" : "element `index`",
                       presenceText(type, field), beyond});
    case Getter::Count:
        return countText(type, field);
    case Getter::Array:
        return fmt::format("the values of get{}(index), inside the record", name);
    case Getter::ConstArray:
        return fmt::format("the values of get{}(index), inside the record, to be read", name);
    case Getter::Vector:
        return fmt::format("the values of get{}(index), copied", name);
    case Getter::Block:
        return joined({meaningText(format, type, field), "sub-block `index`, owned by this message",
                       presenceText(type, field), beyond});
    case Getter::ConstBlock:
        return "sub-block `index`, to be read; " + beyond;
    case Getter::BlockVector:
        return "all sub-blocks, owned by this message";
    case Getter::ConstBlockVector:
        return "all sub-blocks, owned by this message, to be read";
    case Getter::Child:
        return joined({meaningText(format, type, field), "sub-block, owned by this message",
                       absenceText(type, field)});
    case Getter::ConstChild:
        return joined({"the sub-block, to be read", absenceText(type, field)});
    }
    return "";
}

std::string sentence(std::string text)
{
    if (text.empty())
        return text;
    text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return text + '.';
}

} // namespace

std::string getterComment(const Format& format, const RecordType& type, const Field& field,
                          Getter getter)
{
    return commentLines("    /// ", sentence(commentText(format, type, field, getter)));
}

std::string classComment(std::string_view mark, const Format& format, const RecordType& type)
{
    std::string text;
    if (type.isMain()) {
        text = fmt::format("{}, block {}", type.name, type.number);
    } else {
        std::string owners;
        for (const int owner : type.owners) {
            owners +=
                (owners.empty() ? "" : " and ") + format.types[static_cast<size_t>(owner)].name;
        }
        text = owners.empty() ? type.name + ", a sub-block"
                              : fmt::format("{}, a sub-block of {}", type.name, owners);
    }
    if (!type.text.empty())
        text += ": " + withoutStop(type.text);
    return commentLines(mark, text + '.');
}

} // namespace korcg::generator
