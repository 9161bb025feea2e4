#include "emit/codec/Parts.h"
#include "model/Names.h"

#include <fmt/format.h>

namespace korcg::generator::codec
{

namespace
{

std::string_view kindName(FieldKind kind)
{
    switch (kind) {
    case FieldKind::Value:
        return "Value";
    case FieldKind::Bits:
        return "Bits";
    case FieldKind::Derived:
        return "Derived";
    case FieldKind::Array:
        return "Array";
    case FieldKind::CountedArray:
        return "CountedArray";
    case FieldKind::Text:
        return "Text";
    case FieldKind::CountedText:
        return "CountedText";
    case FieldKind::Blocks:
        return "Blocks";
    case FieldKind::Embedded:
        return "Embedded";
    }
    return "";
}

std::string_view typeName(const Field& field)
{
    if (field.kind == FieldKind::Blocks || field.kind == FieldKind::Embedded)
        return "Record";
    switch (field.type) {
    case Scalar::U8:
        return "U8";
    case Scalar::I8:
        return "I8";
    case Scalar::U16:
        return "U16";
    case Scalar::I16:
        return "I16";
    case Scalar::U32:
        return "U32";
    case Scalar::I32:
        return "I32";
    case Scalar::U64:
        return "U64";
    case Scalar::F32:
        return "F32";
    case Scalar::F64:
        return "F64";
    case Scalar::Char:
        return "Char";
    }
    return "";
}

std::string_view presenceName(Presence presence)
{
    switch (presence) {
    case Presence::Always:
        return "Always";
    case Presence::SinceRevision:
        return "SinceRevision";
    case Presence::OnlyRevision:
        return "OnlyRevision";
    case Presence::Selected:
        return "Selected";
    }
    return "";
}

// A lambda that calls a typed function on an untyped record.
std::string untyped(const RecordType& type, const std::string& call)
{
    return fmt::format(
        "[](void* record) {{ {}; }}",
        fmt::format(fmt::runtime(call), fmt::format("static_cast<{}*>(record)", recordName(type))));
}

std::string deriveOf(const RecordType& type, int trigger)
{
    const Field& field = type.fields[static_cast<std::size_t>(trigger)];
    if (field.isHeader)
        return "nullptr";
    for (const Field& other : type.fields) {
        if (other.kind == FieldKind::Derived && other.after == trigger) {
            return untyped(type,
                           fmt::format("derive_{}_{}(*{{}})", type.name, identifier(field.name)));
        }
    }
    return "nullptr";
}

std::string appendOf(const RecordType& type, const Field& field)
{
    if (field.kind != FieldKind::Blocks)
        return "nullptr";
    return fmt::format(
        "[](void* record) -> void* {{ return TQX_append_{}_{}(static_cast<{}*>(record)); "
        "}}",
        type.name, identifier(field.name), recordName(type));
}

int subRecordType(const Format& format, const Field& field)
{
    const RecordType* sub = format.find(field.subType);
    return sub == nullptr ? 0 : sub->record;
}

std::string_view summaryName(Summary summary)
{
    switch (summary) {
    case Summary::Any:
        return "Any";
    case Summary::All:
        return "All";
    case Summary::Neither:
        return "Neither";
    case Summary::Least:
        return "Least";
    case Summary::None:
        break;
    }
    return "None";
}

constexpr std::string_view fieldLegend = R"(    // name, meaning,
    //     code, recordOffset, wireOffset, recordType, elements, presenceValue, parent, selector,
    //     count, length,
    //     kind, type, presence,
    //     width, shift, lengthInMain, alwaysSent, countsBytes, isPadding, edition, isAddition,
    //     summary, summed, derive, append, sub
)";

constexpr std::string_view typeLegend =
    R"(    // name, fields, fieldCount, firstSubBlock, recordType, blockNumber, linksToMain,
    //     highestRevision, ownRevision, edition, hasMessage, recordSize,
    // sizeUnderflow, internal, crcChecksum, disabled, kindAssertion, kindTypes,
    // init, encode, release, described
)";

std::string rowText(const Format& format, const RecordType& type, int index)
{
    const Field& field = type.fields[static_cast<std::size_t>(index)];
    return fmt::format(
        "    {{{}, {},\n        {}, offsetof({}, {}), {}, {}, {}, {}, {}, {}, {}, {},\n"
        "        TQX_FieldKind::{}, TQX_MemberType::{}, TQX_Presence::{},\n"
        "        {}, {}, {}, {}, {}, {}, {}, {}, TQX_Summary::{}, {:#x}, {}, {}, {}}},\n",
        literal(field.name), literal(field.text), field.code, recordName(type),
        identifier(field.name), field.wireOffset, subRecordType(format, field), field.elements,
        field.presenceValue, field.parent, field.selector, field.count, field.length,
        kindName(field.kind), typeName(field), presenceName(field.presence), field.width,
        field.shift, field.lengthInMain, field.alwaysSent, field.countsBytes, field.isPadding,
        field.edition, field.isAddition, summaryName(field.summary), field.summed,
        deriveOf(type, index), appendOf(type, field),
        field.subType.empty() ? "nullptr" : "&layout_" + field.subType);
}

// The assertion that a sub-block makes on the kind of the main block above it, and which record
// types pass it.
std::pair<std::string, std::string> kindOf(const Format& format, const RecordType& type)
{
    if (type.linksToMain != 1)
        return {};
    std::string kind;
    for (const int owner : type.owners) {
        if (kind.empty())
            kind = format.types[static_cast<std::size_t>(owner)].kindName;
    }
    if (kind.empty())
        return {};
    std::string accepted;
    for (const RecordType& main : format.types) {
        if (main.kindName == kind)
            accepted += fmt::format("{}, ", main.record);
    }
    return {fmt::format("TQX_IS_{}(TQX_AS_KORCG_HEADER(p)->korcg_father)", kind), accepted + "0"};
}

bool ownsArrays(const Format& format, const RecordType& type)
{
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Blocks ||
            (field.kind == FieldKind::Embedded && ownsArrays(format, *format.find(field.subType))))
            return true;
    }
    return false;
}

std::size_t firstSubBlock(const RecordType& type)
{
    std::size_t row = 0;
    while (row < type.fields.size() && type.fields[row].kind != FieldKind::Blocks &&
           type.fields[row].kind != FieldKind::Embedded)
        ++row;
    return row;
}

} // namespace

std::string layoutTable(const Format& format, const RecordType& type)
{
    std::string text =
        fmt::format("namespace\n{{\n\nconst TQX_FieldLayout fields_{}[] = {{\n", type.name);
    text += fieldLegend;
    for (int index = 0; index < static_cast<int>(type.fields.size()); ++index)
        text += rowText(format, type, index);
    text += "};\n\n";
    const auto [assertion, accepted] = kindOf(format, type);
    if (!assertion.empty())
        text += fmt::format("const uint16_t kinds_{}[] = {{{}}};\n\n", type.name, accepted);
    text += "} // namespace\n\n";
    const std::string record = recordName(type);
    const std::string encode =
        type.isMain() ? fmt::format("[](unsigned char* buffer, unsigned short bufferSize, void* "
                                    "record) {{\n        return TQX_encode_{}(buffer, bufferSize, "
                                    "static_cast<{}*>(record));\n    }}",
                                    type.name, record)
                      : "nullptr";
    text += fmt::format(
        "const TQX_TypeLayout layout_{0} = {{\n"
        "{17}"
        "    \"{0}\", fields_{0}, {1}, {16}, {2}, {3}, {4}, {5}, {18}, {19}, {6}, sizeof({7}),\n"
        "    {8}, {9}, {10}, {11}, {12}, {13},\n"
        "    [](void* record) {{\n        return TQX_init_{0}(static_cast<{7}*>(record));\n    "
        "}},\n"
        "    {14},\n"
        "    {15}, nullptr}};\n\n",
        type.name, type.fields.size(), type.record, type.number, type.linksToMain,
        type.highestRevision, type.hasMessage, record, type.sizeUnderflow, type.internal,
        type.crcChecksum, type.disabled, assertion.empty() ? "nullptr" : literal(assertion),
        assertion.empty() ? "nullptr" : fmt::format("kinds_{}", type.name), encode,
        ownsArrays(format, type) ? "&TQX_release" : "nullptr", firstSubBlock(type), typeLegend,
        type.ownRevision, type.edition);
    return text;
}

} // namespace korcg::generator::codec
