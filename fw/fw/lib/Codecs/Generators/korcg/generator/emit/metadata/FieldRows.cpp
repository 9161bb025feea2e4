#include "emit/metadata/FieldRows.h"

#include "emit/metadata/FieldFacts.h"
#include "emit/metadata/SymbolTables.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator
{

namespace
{

constexpr int DefaultPrecision = 3;

/// Whether the symbol table already names the do-not-use value.
bool tableNamesDoNotUse(const Format& format, const Field& field)
{
    if (field.symbols.empty() || std::holds_alternative<double>(*field.doNotUse))
        return false;
    const auto bits =
        std::visit([](auto value) { return static_cast<uint64_t>(value); }, *field.doNotUse);
    const std::vector<SymbolicValue>& values = format.symbols.at(field.symbols).values;
    return std::any_of(values.begin(), values.end(), [bits](const SymbolicValue& symbol) {
        return static_cast<uint64_t>(symbol.value) == bits;
    });
}

std::string flags(const Format& format, const Field& field)
{
    std::string text;
    const auto add = [&text](bool set, std::string_view flag) {
        if (set)
            text += fmt::format("{}Row::{}", text.empty() ? "" : " | ", flag);
    };
    add(field.isOptional, "Optional");
    add(field.isRepeated, "Repeated");
    add(field.isVirtual, "Virtual");
    add(field.bitMask, "BitMask");
    add(field.identifies, "Identifying");
    add(field.doNotUse.has_value(), "HasDoNotUse");
    add(field.doNotUse && field.doNotUseNamed && !tableNamesDoNotUse(format, field),
        "NamesDoNotUse");
    return text.empty() ? "0" : text;
}

std::string realText(double value)
{
    return fmt::format("{}", value);
}

struct DoNotUse {
    std::string integer = "0";
    std::string real = "0";
};

DoNotUse doNotUse(const Field& field)
{
    DoNotUse result;
    if (!field.doNotUse)
        return result;
    if (isFloat(field.type)) {
        result.real = std::visit([](auto value) { return realText(static_cast<double>(value)); },
                                 *field.doNotUse);
    } else {
        result.integer = std::visit(
            [](auto value) {
                return value < 0 ? fmt::format("uint64_t({})", static_cast<int64_t>(value))
                                 : fmt::format("{}u", static_cast<uint64_t>(value));
            },
            *field.doNotUse);
    }
    return result;
}

std::string subMessageGetter(const RecordType& type, const Field& field)
{
    const bool isArray = field.kind == FieldKind::Blocks;
    return fmt::format(R"(
        [](const Message& owner, unsigned{index}) -> const Message* {{
            return static_cast<const TQX_{type}_Message&>(owner).get{field}({argument});
        }})",
                       fmt::arg("index", isArray ? " index" : ""), fmt::arg("type", type.name),
                       fmt::arg("field", identifier(field.name)),
                       fmt::arg("argument", isArray ? "index" : ""));
}

std::string fieldRow(const Format& format, const RecordType& type, int index)
{
    const Field& field = type.fields[static_cast<size_t>(index)];
    const std::string name = fieldInfoClass(type, field);
    const DoNotUse none = doNotUse(field);
    const int precision = field.precision.value_or(isFloat(field.type) ? DefaultPrecision : -1);
    std::string subInfo = "nullptr";
    std::string subGetter = "nullptr";
    if (isSubMessage(field)) {
        subInfo = fmt::format("TQX_messageInstance<{}>", messageInfoClass(field.subType));
        subGetter = subMessageGetter(type, field);
    }
    return fmt::format(
        R"(    {{"{name}",
        TQX_fieldInstance<{name}>,
        {subInfo}, {subGetter}, {symbols}, {unit},
        {scale}, {doNotUse}, {realDoNotUse}, {precision}, {role}, {subFields}, {flags}}},
)",
        fmt::arg("name", name), fmt::arg("subInfo", subInfo), fmt::arg("subGetter", subGetter),
        fmt::arg("symbols", field.symbols.empty() ? "nullptr" : symbolFunction(field.symbols)),
        fmt::arg("unit", field.unit.empty() ? "nullptr" : literal(field.unit)),
        fmt::arg("scale", realText(field.scale.value_or(0))), fmt::arg("doNotUse", none.integer),
        fmt::arg("realDoNotUse", none.real),
        fmt::arg("precision", isSubMessage(field) ? -1 : precision),
        fmt::arg("role", isSubMessage(field) ? 0 : static_cast<int>(field.role)),
        fmt::arg("subFields", countSubFields(type, index)),
        fmt::arg("flags", flags(format, field)));
}

} // namespace

std::string fieldRows(const Format& format, const RecordType& type)
{
    std::string text = R"(    // className,
    //     instance,
    //     subMessageInfo, subMessage, symbols, unit,
    //     scale, doNotUse, realDoNotUse, precision, role, subFields, flags
)";
    for (int i = 0; i < static_cast<int>(type.fields.size()); ++i)
        text += fieldRow(format, type, i);
    return text;
}

std::string typeRow(const RecordType& type, const std::string& rows)
{
    const std::string name = messageInfoClass(type.name);
    return fmt::format(R"({{
    "{name}", TQX_messageInstance<{name}>, {rows},
    {description}, {record}, {version}, {flexrate}, {esoc}, '{timestamp}'}})",
                       fmt::arg("name", name), fmt::arg("rows", rows),
                       fmt::arg("description", type.text.empty() ? "nullptr" : literal(type.text)),
                       fmt::arg("record", type.record), fmt::arg("version", type.generation),
                       fmt::arg("flexrate", type.flexrate), fmt::arg("esoc", type.esoc),
                       fmt::arg("timestamp", type.timestamp));
}

} // namespace korcg::generator
