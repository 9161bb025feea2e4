#include "emit/codec/Parts.h"
#include "emit/codec/Shape.h"
#include "model/Names.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator::codec
{

namespace
{

const Field& row(const RecordType& type, int index)
{
    return type.fields[static_cast<std::size_t>(index)];
}

std::string_view loadName(Scalar type)
{
    switch (type) {
    case Scalar::U8:
    case Scalar::Char:
        return "korcg_load_u8";
    case Scalar::I8:
        return "korcg_load_i8";
    case Scalar::U16:
        return "korcg_load_u16";
    case Scalar::I16:
        return "korcg_load_i16";
    case Scalar::U32:
        return "korcg_load_u32";
    case Scalar::I32:
        return "korcg_load_i32";
    case Scalar::U64:
        return "korcg_load_u64";
    case Scalar::F32:
        return "korcg_load_f32";
    case Scalar::F64:
        return "korcg_load_f64";
    }
    return "";
}

// What a sub-field has that sums up others of its word.
std::string summaryOf(const RecordType& type, const Field& part, std::string_view index)
{
    const std::string word =
        "record." + identifier(row(type, part.parent).name) + std::string(index);
    uint64_t all = 0;
    std::string each;  // whether each of them is not 0
    std::string least; // the smallest
    bool isBits = true;
    for (std::size_t bit = 0; bit < 32; ++bit) {
        if ((part.summed >> bit & 1U) == 0)
            continue;
        const Field& one = row(type, part.parent + 1 + static_cast<int>(bit));
        const uint64_t mask = ((uint64_t{1} << one.width) - 1) << one.shift;
        const std::string member = fmt::format("record.{}{}", identifier(one.name), index);
        all |= mask;
        isBits = isBits && one.width == 1;
        each += fmt::format("{}({} & {:#x}U) != 0", each.empty() ? "" : " && ", word, mask);
        least = least.empty() ? member : fmt::format("std::min({}, {})", least, member);
    }
    switch (part.summary) {
    case Summary::Least:
        return least;
    case Summary::All:
        return isBits ? fmt::format("({} & {:#x}U) == {:#x}U ? 1 : 0", word, all, all)
                      : each + " ? 1 : 0";
    case Summary::Neither:
        return fmt::format("({} & {:#x}U) == 0 ? 1 : 0", word, all);
    default:
        return fmt::format("({} & {:#x}U) != 0 ? 1 : 0", word, all);
    }
}

// Statements that split a packed word into its members; `index` is "" or "[i]".
std::string splitStatements(const RecordType& type, int wordRow, std::string_view index,
                            std::string_view indent)
{
    std::string text;
    for (std::size_t i = static_cast<std::size_t>(wordRow) + 1;
         i < type.fields.size() && type.fields[i].parent == wordRow; ++i) {
        const Field& part = type.fields[i];
        if (part.summary != Summary::None)
            continue;
        const std::string word =
            fmt::format("record.{}{}", identifier(row(type, wordRow).name), index);
        std::string value;
        if (isSigned(part.type)) {
            value = fmt::format("signedBits({}, {}, {})", word, part.shift, part.width);
        } else if (part.shift == 0) {
            value = fmt::format("{} & {:#x}U", word, (uint64_t{1} << part.width) - 1);
        } else {
            value =
                fmt::format("{} >> {} & {:#x}U", word, part.shift, (uint64_t{1} << part.width) - 1);
        }
        text += fmt::format("{}record.{}{} = static_cast<{}>({});\n", indent, identifier(part.name),
                            index, memberType(part.type), value);
    }
    for (const Field& part : type.fields) {
        if (part.parent == wordRow && part.summary != Summary::None) {
            text +=
                fmt::format("{}record.{}{} = static_cast<{}>({});\n", indent, identifier(part.name),
                            index, memberType(part.type), summaryOf(type, part, index));
        }
    }
    return text;
}

bool hasParts(const RecordType& type, int wordRow)
{
    const auto next = static_cast<std::size_t>(wordRow) + 1;
    return next < type.fields.size() && type.fields[next].parent == wordRow;
}

std::string loadArray(const RecordType& type, int index, const std::string& place,
                      std::string_view indent)
{
    const Field& field = row(type, index);
    const std::string name = identifier(field.name);
    std::string text;
    if (bytesOf(field.type) == 1) {
        text +=
            fmt::format("{}std::memcpy(record.{}, {}, {});\n", indent, name, place, field.elements);
        if (field.isText())
            text += fmt::format("{}record.{}[{}] = '\\0';\n", indent, name, field.elements);
        if (!hasParts(type, index))
            return text;
    }
    text += fmt::format("{}for (uint32_t i = 0; i < {}; ++i) {{\n", indent, field.elements);
    if (bytesOf(field.type) != 1) {
        text += fmt::format("{}    record.{}[i] = {}({} + {} * i);\n", indent, name,
                            loadName(field.type), place, bytesOf(field.type));
    }
    text += splitStatements(type, index, "[i]", std::string(indent) + "    ");
    return text + fmt::format("{}}}\n", indent);
}

bool triggersFormula(const RecordType& type, int index)
{
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::Derived && field.after == index)
            return true;
    }
    return false;
}

std::string deriveName(const RecordType& type, const Field& trigger)
{
    return fmt::format("derive_{}_{}", type.name, identifier(trigger.name));
}

bool isOfParent(const std::string& input)
{
    return input.rfind("parent.", 0) == 0;
}

// Whether a value that derives from this field, or one that follows it, needs the parent's.
bool climbs(const RecordType& type, int trigger)
{
    return std::any_of(type.fields.begin(), type.fields.end(), [trigger](const Field& field) {
        return field.kind == FieldKind::Derived && field.after == trigger &&
               std::any_of(field.inputs.begin(), field.inputs.end(), isOfParent);
    });
}

// With a single owner the loader can be handed the parent's record.
bool knowsParent(const RecordType& type)
{
    return type.owners.size() == 1;
}

std::string place(int offset)
{
    return offset == 0 ? "at" : fmt::format("at + {}", offset);
}

std::string condition(const Field& field)
{
    if (field.alwaysSent || field.presence == Presence::Always)
        return {};
    return fmt::format("revision {} {}", field.presence == Presence::SinceRevision ? ">=" : "==",
                       field.presenceValue);
}

} // namespace

namespace
{

// Whether a member is a counted array, or split from the elements of one.
bool isOfCounted(const RecordType& type, const Field& field)
{
    return field.isCounted() || (field.kind == FieldKind::Bits && field.parent >= 0 &&
                                 row(type, field.parent).isCounted());
}

bool hasCounted(const RecordType& type)
{
    return std::any_of(type.fields.begin(), type.fields.end(),
                       [&](const Field& field) { return isOfCounted(type, field); });
}

// Statements for the members of a cleared record that do not start at 0.
std::string startingValues(const RecordType& type)
{
    std::string text = fmt::format("    record.korcg_type = {};\n", type.record);
    if (type.isMain()) {
        text += fmt::format("    record.Sync1 = '$';\n    record.Sync2 = '@';\n"
                            "    record.BlockNumber = {};\n",
                            type.number);
    }
    for (const Field& field : type.fields) {
        const std::string name = identifier(field.name);
        if (field.kind == FieldKind::Text)
            text += fmt::format("    std::memset(record.{}, ' ', {});\n", name, field.elements);
        if (field.kind == FieldKind::Embedded)
            text += fmt::format("    init_{}(record.{});\n", field.subType, name);
        if (field.initial)
            text += fmt::format("    record.{} = {:#};\n", name, *field.initial);
    }
    return text;
}

// Of a counted array, the first element and the one after the last.
std::string clearEnds(const RecordType& type, const Field& field)
{
    const Field& array = field.kind == FieldKind::Bits ? row(type, field.parent) : field;
    return fmt::format("    record.{0}[0] = 0;\n    record.{0}[{1}] = 0;\n", identifier(field.name),
                       array.elements - 1 + (array.isText() || array.countsBytes ? 1 : 0));
}

} // namespace

std::string initFunction(const RecordType& type)
{
    return fmt::format("inline void init_{0}({1}& record)\n{{\n"
                       "    clearMembers(record, 0, sizeof record);\n{2}}}\n\n",
                       type.name, recordName(type), startingValues(type));
}

std::string clearFunction(const RecordType& type)
{
    if (!hasCounted(type))
        return {};
    const std::string record = recordName(type);
    std::string text = fmt::format("inline void clear_{}({}& record)\n{{\n", type.name, record);
    std::string ends;
    // Members in record order, cut at the counted arrays.
    std::string from = "korcg_type";
    for (const Field& field : type.fields) {
        const std::string name = identifier(field.name);
        if (!isOfCounted(type, field)) {
            if (from.empty())
                from = name;
            continue;
        }
        if (!from.empty()) {
            text += fmt::format("    clearMembers(record, offsetof({0}, {1}), offsetof({0}, "
                                "{2}));\n",
                                record, from, name);
        }
        from.clear();
        ends += clearEnds(type, field);
    }
    if (!from.empty()) {
        text += fmt::format("    clearMembers(record, offsetof({0}, {1}), sizeof({0}));\n", record,
                            from);
    }
    return text + ends + startingValues(type) + "}\n\n";
}

namespace
{

// Members that load_<Name> and loadHeader write whatever the block holds.
bool isAlwaysLoaded(const RecordType& type, const Shape& shape, int index)
{
    const Field& field = row(type, index);
    if (field.isHeader)
        return true;
    if (field.kind == FieldKind::Bits)
        return isAlwaysLoaded(type, shape, field.parent);
    if (field.kind == FieldKind::Derived) {
        if (!knowsParent(type) && std::any_of(field.inputs.begin(), field.inputs.end(), isOfParent))
            return false;
        return isAlwaysLoaded(type, shape, field.after);
    }
    return std::find(shape.head.begin(), shape.head.end(), index) != shape.head.end() &&
           condition(field).empty();
}

std::string startStatement(const Format& format, const RecordType& type, const Field& field)
{
    const std::string name = identifier(field.name);
    const Field& array = field.kind == FieldKind::Bits ? row(type, field.parent) : field;
    if (field.kind == FieldKind::Blocks) {
        return fmt::format("    record.{0} = nullptr;\n    record.{0}_storage = "
                           "ArrayStorage::Own;\n",
                           name);
    }
    if (field.kind == FieldKind::Embedded) {
        return fmt::format("    {}_{}(record.{});\n",
                           hasCounted(*format.find(field.subType)) ? "clear" : "init",
                           field.subType, name);
    }
    if (array.isCounted())
        return clearEnds(type, field);
    if (field.kind == FieldKind::Text) {
        return fmt::format("    std::memset(record.{0}, ' ', {1});\n    record.{0}[{1}] = '\\0';\n",
                           name, field.elements);
    }
    if (array.isArray())
        return fmt::format("    std::memset(record.{0}, 0, sizeof record.{0});\n", name);
    return fmt::format("    record.{} = {};\n", name,
                       field.initial ? fmt::format("{:#}", *field.initial) : "0");
}

} // namespace

std::string startFunction(const Format& format, const RecordType& type)
{
    const Shape shape = shapeOf(type);
    std::string text =
        fmt::format("inline void start_{}({}& record, void* father, uint32_t bits)\n{{\n"
                    "    record.korcg_type = {};\n"
                    "    record.korcg_bits = bits;\n"
                    "    record.korcg_father = father;\n",
                    type.name, recordName(type), type.record);
    for (int index = 0; index < static_cast<int>(type.fields.size()); ++index) {
        if (!isAlwaysLoaded(type, shape, index))
            text += startStatement(format, type, row(type, index));
    }
    return text + "}\n\n";
}

namespace
{

// Statement that computes one derived value.
std::string formula(const Field& field)
{
    std::string arguments;
    for (const std::string& input : field.inputs) {
        arguments += arguments.empty() ? "" : ", ";
        arguments += isOfParent(input) ? "parent." + identifier(input.substr(7))
                                       : "record." + identifier(input);
    }
    std::string value = fmt::format("Derived::{}({})", field.function, arguments);
    if (field.type != Scalar::F64)
        value = fmt::format("static_cast<{}>({})", memberType(field.type), value);
    return fmt::format("    record.{} = {};\n", identifier(field.name), value);
}

} // namespace

std::string deriveFunctions(const Format& format, const RecordType& type)
{
    std::string text;
    for (int trigger = 0; trigger < static_cast<int>(type.fields.size()); ++trigger) {
        if (!triggersFormula(type, trigger) || row(type, trigger).isHeader)
            continue;
        std::string formulas;
        for (const Field& field : type.fields) {
            if (field.kind == FieldKind::Derived && field.after == trigger)
                formulas += formula(field);
        }
        const std::string name = deriveName(type, row(type, trigger));
        const std::string record = recordName(type);
        if (!climbs(type, trigger)) {
            text += fmt::format("inline void {}({}& record)\n{{\n{}}}\n\n", name, record, formulas);
            continue;
        }
        const RecordType& owner = format.types[static_cast<std::size_t>(type.owners.front())];
        text += fmt::format(
            "inline void {name}(const {owner}& parent, {record}& record)\n{{\n{formulas}}}\n\n"
            "inline void {name}({record}& record)\n{{\n"
            "    if (const auto* parent = fatherAs<{owner}>(record.korcg_father, {ownerType}))\n"
            "        {name}(*parent, record);\n}}\n\n",
            fmt::arg("name", name), fmt::arg("owner", recordName(owner)),
            fmt::arg("record", record), fmt::arg("formulas", formulas),
            fmt::arg("ownerType", owner.record));
    }
    return text;
}

bool needsParent(const RecordType& type)
{
    bool any = false;
    for (int index = 0; index < static_cast<int>(type.fields.size()); ++index)
        any = any || climbs(type, index);
    return any && knowsParent(type);
}

std::string loadFunction(const Format& format, const RecordType& type)
{
    const Shape shape = shapeOf(type);
    std::string body;
    for (const int index : shape.head) {
        const Field& field = row(type, index);
        if (!field.isHeader) {
            const std::string guard = condition(field);
            const std::string indent = guard.empty() ? "    " : "        ";
            std::string statements;
            const std::string from = place(field.wireOffset);
            if (field.isArray()) {
                statements = loadArray(type, index, from, indent);
            } else {
                statements =
                    fmt::format("{}record.{} = {}{}({}){};\n", indent, identifier(field.name),
                                field.type == Scalar::Char ? "static_cast<char>(" : "",
                                loadName(field.type), from, field.type == Scalar::Char ? ")" : "");
            }
            if (!field.isArray())
                statements += splitStatements(type, index, "", indent);
            if (triggersFormula(type, index)) {
                statements +=
                    fmt::format("{}{}({}record);\n", indent, deriveName(type, field),
                                climbs(type, index) && knowsParent(type) ? "parent, " : "");
            }
            body += guard.empty() ? statements
                                  : fmt::format("    if ({}) {{\n{}    }}\n", guard, statements);
        }
    }
    std::string parent;
    if (needsParent(type)) {
        parent =
            fmt::format("const {}& parent, ",
                        recordName(format.types[static_cast<std::size_t>(type.owners.front())]));
    }
    return fmt::format(
        "inline void load_{}(const uint8_t* at, {}{}{}& record)\n{{\n{}}}\n\n", type.name,
        shape.conditional ? "unsigned revision, " : "", parent, recordName(type),
        body.empty() ? "    static_cast<void>(at);\n    static_cast<void>(record);\n" : body);
}

} // namespace korcg::generator::codec
