#include "tqx/log/inspect/FieldTable.h"

#include "TQX_FieldFacts.h"
#include "TQX_RecordAccess.h"
#include "tqx/log/inspect/FieldNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

const char* memberName(TQX_MemberType type)
{
    switch (type) {
    case TQX_MemberType::U8:
        return "u8";
    case TQX_MemberType::I8:
        return "i8";
    case TQX_MemberType::U16:
        return "u16";
    case TQX_MemberType::I16:
        return "i16";
    case TQX_MemberType::U32:
        return "u32";
    case TQX_MemberType::I32:
        return "i32";
    case TQX_MemberType::U64:
        return "u64";
    case TQX_MemberType::F32:
        return "f32";
    case TQX_MemberType::F64:
        return "f64";
    case TQX_MemberType::Char:
        return "char";
    case TQX_MemberType::Record:
        return "sub-block";
    }
    return "";
}

bool isSigned(TQX_MemberType type)
{
    return type == TQX_MemberType::I8 || type == TQX_MemberType::I16 || type == TQX_MemberType::I32;
}

/// The name that follows `name` when names are counted, such as "G08" after "G07"; empty for a
/// name without a number at its end.
std::string successorOf(std::string name)
{
    size_t digit = name.size();
    while (digit != 0 && name[digit - 1] == '9')
        name[--digit] = '0';
    if (digit == 0 || name[digit - 1] < '0' || name[digit - 1] > '8')
        return "";
    ++name[digit - 1];
    return name;
}

/// "<value> <name>" for each named value but the one that says "not available"; three or more that
/// are counted through together are one "<first>..<last> <name>..<name>".
std::vector<std::string> symbolsOf(const TQX_FieldFacts& facts)
{
    struct Run {
        TQX_NamedValue first;
        TQX_NamedValue last;
        size_t length;
    };
    std::vector<Run> runs;
    for (const TQX_NamedValue& named : TQX_namedValues(facts)) {
        if (!runs.empty() && successorOf(std::string(runs.back().last.name)) == named.name &&
            runs.back().last.value + 1 == named.value) {
            runs.back().last = named;
            ++runs.back().length;
        } else {
            runs.push_back({named, named, 1});
        }
    }
    std::vector<std::string> names;
    for (const auto& [first, last, length] : runs) {
        if (length > 2) {
            names.push_back(
                fmt::format("{}..{} {}..{}", first.value, last.value, first.name, last.name));
            continue;
        }
        names.push_back(fmt::format("{} {}", first.value, first.name));
        if (length == 2)
            names.push_back(fmt::format("{} {}", last.value, last.name));
    }
    return names;
}

/// Whether the names of a field's values fit beside it.
bool isShort(const std::vector<std::string>& names)
{
    constexpr size_t most = 40;
    return fmt::format("{}", fmt::join(names, ", ")).size() <= most;
}

class Table
{
public:
    Table(Buffer& buffer, const TQX_TypeLayout& layout, const ValueStyle& style)
        : m_out(buffer), m_type(layout), m_style(style)
    {
    }

    void append();

private:
    void appendHead();
    void appendRow(int index, size_t nameWidth, size_t typeWidth);
    void appendSymbols(int index, size_t indentation);
    std::string nameOf(int index) const;
    std::string offsetOf(const TQX_FieldLayout& field) const;
    std::string typeOf(const TQX_FieldLayout& field) const;
    std::string presenceOf(const TQX_FieldLayout& field) const;
    std::string neededOf(const TQX_FieldFacts& field) const;
    std::string propertiesOf(int index) const;

    Buffer& m_out;
    const TQX_TypeLayout& m_type;
    ValueStyle m_style;
};

std::string Table::nameOf(int index) const
{
    const TQX_FieldLayout& field = m_type.fields[index];
    return std::string(field.kind == TQX_FieldKind::Bits ? "  " : "") + field.name;
}

std::string Table::offsetOf(const TQX_FieldLayout& field) const
{
    if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived)
        return "";
    return field.wireOffset < 0 ? "..." : std::to_string(field.wireOffset);
}

std::string Table::typeOf(const TQX_FieldLayout& field) const
{
    const std::string element = memberName(field.type);
    switch (field.kind) {
    case TQX_FieldKind::Bits:
        if (field.summary != TQX_Summary::None)
            return field.width == 1 ? "(bit)" : fmt::format("({} bits)", field.width);
        if (field.width == 1)
            return fmt::format("bit {}", field.shift);
        return fmt::format("bits {}-{}{}", field.shift, field.shift + field.width - 1,
                           isSigned(field.type) ? ", signed" : "");
    case TQX_FieldKind::Derived:
        return "(" + element + ")";
    case TQX_FieldKind::Array:
        return fmt::format("{}[{}]", element, field.elements);
    case TQX_FieldKind::Text:
        return fmt::format("text[{}]", field.elements);
    case TQX_FieldKind::CountedArray:
    case TQX_FieldKind::CountedText:
        return fmt::format("{}[{}{}]", field.kind == TQX_FieldKind::CountedText ? "text" : element,
                           m_type.fields[field.count].name, field.countsBytes ? " bytes" : "");
    case TQX_FieldKind::Blocks:
        return fmt::format("{}[{}]", field.sub->name, m_type.fields[field.count].name);
    case TQX_FieldKind::Embedded:
        return field.sub->name;
    case TQX_FieldKind::Value:
        break;
    }
    return element;
}

std::string Table::presenceOf(const TQX_FieldLayout& field) const
{
    switch (field.presence) {
    case TQX_Presence::SinceRevision:
        return fmt::format("from revision {}", field.presenceValue);
    case TQX_Presence::OnlyRevision:
        return fmt::format("revision {} only", field.presenceValue);
    case TQX_Presence::Selected:
        return fmt::format("when {} is {}", m_type.fields[field.selector].name,
                           field.presenceValue);
    case TQX_Presence::Always:
        break;
    }
    return "";
}

/// "not available when CN0 is not"
std::string Table::neededOf(const TQX_FieldFacts& field) const
{
    std::vector<std::string> names = inputNames(m_type, field);
    std::string last = std::move(names.back());
    names.pop_back();
    return fmt::format("not available when {}{}{} is not", fmt::join(names, ", "),
                       names.empty() ? "" : " or ", last);
}

std::string Table::propertiesOf(int index) const
{
    std::vector<std::string> properties;
    const TQX_FieldLayout& layout = m_type.fields[index];
    const TQX_FieldFacts& field = TQX_factsOf(m_type, index);
    const std::string_view unit = shownUnit(TQX_unit(field), m_style);
    if (const double scale = TQX_scale(field); scale != 0) {
        properties.push_back(fmt::format("x {}{}{}", scale, unit.empty() ? "" : " ", unit));
    } else if (!unit.empty()) {
        properties.emplace_back(unit);
    }
    if (field.has(TQX_FieldFacts::HasDoNotUse)) {
        properties.push_back(fmt::format("not available: {}{}",
                                         field.has(TQX_FieldFacts::Whole) ? "all " : "",
                                         doNotUseText(layout, field)));
    }
    if (field.inputCount != 0)
        properties.push_back(neededOf(field));
    if (const std::vector<std::string> names = symbolsOf(field); !names.empty() && isShort(names))
        properties.push_back(fmt::format("{}", fmt::join(names, ", ")));
    if (field.has(TQX_FieldFacts::Identifying))
        properties.emplace_back("identifies");
    if (field.has(TQX_FieldFacts::Virtual))
        properties.emplace_back("derived");
    if (std::string presence = presenceOf(layout); !presence.empty())
        properties.push_back(std::move(presence));
    if (*layout.meaning)
        properties.emplace_back(layout.meaning);
    return fmt::format("{}", fmt::join(properties, "; "));
}

void Table::appendHead()
{
    m_out.append(m_type.name);
    if (m_type.blockNumber != 0) {
        m_out.append(fmt::format(", block {}", m_type.blockNumber));
    } else {
        m_out.append(", sub-block");
    }
    m_out.append(fmt::format(", record type {}", m_type.recordType));
    if (m_type.highestRevision != 0)
        m_out.append(fmt::format(", revisions 0 to {}", m_type.highestRevision));
    if (!m_type.hasMessage)
        m_out.append(", no message class");
    m_out.append('\n');
    if (const TQX_TypeFacts& whole = TQX_factsOf(m_type);
        !TQX_description(whole).empty() && m_type.blockNumber != 0) {
        m_out.append(TQX_description(whole));
        m_out.append('\n');
    }
    m_out.append('\n');
}

/// The names of a field's values, as many per line as fit, below the field. What fits beside it is
/// there already.
void Table::appendSymbols(int index, size_t indentation)
{
    constexpr size_t lineWidth = 100;
    const std::vector<std::string> names = symbolsOf(TQX_factsOf(m_type, index));
    if (isShort(names))
        return;
    std::string line;
    for (const std::string& name : names) {
        if (!line.empty() && indentation + line.size() + name.size() + 3 > lineWidth) {
            m_out.append(fmt::format("{:{}}{},\n", "", indentation, line));
            line.clear();
        }
        line += (line.empty() ? "" : ", ") + name;
    }
    m_out.append(fmt::format("{:{}}{}\n", "", indentation, line));
}

void Table::appendRow(int index, size_t nameWidth, size_t typeWidth)
{
    const TQX_FieldLayout& field = m_type.fields[index];
    std::string line = fmt::format("{:>6}  {:<{}}  {:<{}}  {}", offsetOf(field), nameOf(index),
                                   nameWidth, typeOf(field), typeWidth, propertiesOf(index));
    line.erase(line.find_last_not_of(' ') + 1);
    m_out.append(line);
    m_out.append('\n');
    appendSymbols(index, nameWidth + 12);
}

void Table::append()
{
    appendHead();
    size_t nameWidth = 4;
    size_t typeWidth = 4;
    for (int i = 0; i < m_type.fieldCount; ++i) {
        nameWidth = std::max(nameWidth, nameOf(i).size());
        typeWidth = std::max(typeWidth, typeOf(m_type.fields[i]).size());
    }
    m_out.append(fmt::format("offset  {:<{}}  type\n", "name", nameWidth));
    for (int i = 0; i < m_type.fieldCount; ++i)
        appendRow(i, nameWidth, typeWidth);
}

} // namespace

void appendFieldTable(Buffer& out, const TQX_TypeLayout& type, const ValueStyle& style)
{
    Table(out, type, style).append();
}

} // namespace tqx
