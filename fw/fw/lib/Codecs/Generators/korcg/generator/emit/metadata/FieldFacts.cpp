#include "emit/metadata/FieldFacts.h"

#include "model/Names.h"
#include "model/Values.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator
{

namespace
{

std::string presenceText(const RecordType& type, const Field& field)
{
    switch (field.presence) {
    case Presence::Always:
        return "";
    case Presence::SinceRevision:
        return fmt::format(", since revision {}", field.presenceValue);
    case Presence::OnlyRevision:
        return fmt::format(", in revision {} only", field.presenceValue);
    case Presence::Selected:
        return fmt::format(", when {} is {}", type.fields[static_cast<size_t>(field.selector)].name,
                           field.presenceValue);
    }
    return "";
}

std::string oneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

} // namespace

bool isSubMessage(const Field& field)
{
    return field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded;
}

std::string fieldInfoClass(const RecordType& type, const Field& field)
{
    return fmt::format("TQX_{}_{}_FieldInfo", type.name, identifier(field.name));
}

std::string messageInfoClass(std::string_view typeName)
{
    return fmt::format("TQX_{}_MessageInfo", typeName);
}

std::string typeText(const RecordType& type, const Field& field)
{
    const std::string element = valueTypeName(field);
    const auto count = [&] { return type.fields[static_cast<size_t>(field.count)].name; };
    switch (field.kind) {
    case FieldKind::Value:
    case FieldKind::Derived:
        return element;
    case FieldKind::Bits: {
        const std::string& parent = type.fields[static_cast<size_t>(field.parent)].name;
        if (field.summary != Summary::None)
            return fmt::format("{}, computed from others of {}", element, parent);
        if (field.width == 1)
            return fmt::format("{}, bit {} of {}", element, field.shift, parent);
        return fmt::format("{}, bits {} to {} of {}", element, field.shift,
                           field.shift + field.width - 1, parent);
    }
    case FieldKind::Array:
    case FieldKind::Text:
        return fmt::format("{}[{}]", element, field.elements);
    case FieldKind::CountedArray:
    case FieldKind::CountedText:
        return fmt::format("{}[{}], at most {}", element, count(), field.elements);
    case FieldKind::Blocks:
        return fmt::format("{}[{}]", field.subType, count());
    case FieldKind::Embedded:
        return field.subType;
    }
    return element;
}

std::string describe(const RecordType& type, const Field& field)
{
    std::string line = field.name;
    if (!field.text.empty())
        line += fmt::format(", {}", oneLine(field.text));
    line += fmt::format(": {}", typeText(type, field));
    if (field.scale)
        line += fmt::format(" x {}", *field.scale);
    if (!field.unit.empty())
        line += fmt::format(" {}", field.unit);
    if (field.doNotUse) {
        line += std::visit([](auto value) { return fmt::format(", {} when not available", value); },
                           *field.doNotUse);
    }
    line += presenceText(type, field);
    return line;
}

} // namespace korcg::generator
