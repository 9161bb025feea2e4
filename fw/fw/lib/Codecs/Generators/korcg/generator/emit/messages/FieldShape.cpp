#include "emit/messages/FieldShape.h"

#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace korcg::generator
{

namespace
{

/// The field that decides how many elements there are: the packed word of a sub-field.
const Field& arrayField(const RecordType& type, const Field& field)
{
    return field.kind == FieldKind::Bits ? type.fields[static_cast<size_t>(field.parent)] : field;
}

std::string memberOf(const RecordType& type, int row)
{
    return "m_record->" + identifier(type.fields[static_cast<size_t>(row)].name);
}

/// "AGCState" becomes "agcState", "Type1" "type1".
std::string lowerCamel(std::string text)
{
    const auto isUpper = [&](size_t i) {
        return i < text.size() && std::isupper(static_cast<unsigned char>(text[i]));
    };
    const auto isLower = [&](size_t i) {
        return i < text.size() && std::islower(static_cast<unsigned char>(text[i]));
    };
    for (size_t i = 0; isUpper(i) && (i == 0 || !isLower(i + 1)); ++i)
        text[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[i])));
    return text;
}

} // namespace

Family familyOf(const RecordType& type, const Field& field)
{
    if (field.kind == FieldKind::Blocks)
        return Family::Blocks;
    if (field.kind == FieldKind::Embedded)
        return Family::Embedded;
    return arrayField(type, field).isArray() ? Family::Repeated : Family::Scalar;
}

std::vector<const Field*> childFields(const RecordType& type)
{
    std::vector<const Field*> children;
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded)
            children.push_back(&field);
    }
    return children;
}

bool hasBlocks(const RecordType& type)
{
    return std::any_of(type.fields.begin(), type.fields.end(),
                       [](const Field& field) { return field.kind == FieldKind::Blocks; });
}

bool hasEmbedded(const RecordType& type)
{
    return std::any_of(type.fields.begin(), type.fields.end(),
                       [](const Field& field) { return field.kind == FieldKind::Embedded; });
}

std::string valueType(const Field& field)
{
    if (!field.subType.empty())
        return fmt::format("TQX_{}_Message*", field.subType);
    return std::string(getterType(field.type));
}

std::string childMember(const Field& field)
{
    return fmt::format("m_{}Message{}", lowerCamel(identifier(field.name)),
                       field.kind == FieldKind::Blocks ? "s" : "");
}

std::string countExpression(const RecordType& type, const Field& field)
{
    const Field& array = arrayField(type, field);
    switch (array.kind) {
    case FieldKind::Text:
        return std::to_string(array.elements + 1);
    case FieldKind::CountedText:
        return memberOf(type, array.count) + " + 1U";
    case FieldKind::CountedArray: {
        const bool divided = array.countsBytes && bytesOf(array.type) > 1;
        return fmt::format("std::min<unsigned int>({}{}, {}U)", memberOf(type, array.count),
                           divided ? fmt::format(" / {}U", bytesOf(array.type)) : "",
                           array.elements);
    }
    case FieldKind::Blocks:
        return memberOf(type, array.count);
    default:
        return std::to_string(array.elements);
    }
}

std::string readableCount(const RecordType& type, const Field& field)
{
    if (field.kind != FieldKind::CountedText)
        return countExpression(type, field);
    return fmt::format("std::min(getNumberOf{}(), {}U)", identifier(field.name),
                       field.elements + 1);
}

std::string presenceExpression(const RecordType& type, const Field& field)
{
    if (field.presence == Presence::Selected)
        return fmt::format("{} == {}", memberOf(type, field.selector), field.presenceValue);
    const char* comparison = field.presence == Presence::OnlyRevision ? "==" : ">=";
    const std::string revision =
        type.isMain() ? "m_record->Revision"
                      : fmt::format("TQX_mainRevision(m_record, {})", type.linksToMain);
    return fmt::format("{} {} {}", revision, comparison, field.presenceValue);
}

} // namespace korcg::generator
