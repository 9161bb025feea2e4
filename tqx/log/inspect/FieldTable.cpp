#include "tqx/log/inspect/FieldTable.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

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

/// The name that follows `name` when names are counted, such as "G08" behind "G07"; empty for a
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
std::vector<std::string> symbolsOf(const FieldInfo& field)
{
    struct Run {
        FieldValue first;
        FieldValue last;
        std::string firstName;
        std::string lastName;
        size_t length;
    };
    std::vector<Run> runs;
    for (const FieldInfo::SymbolicValue& symbol : field.getSymbolicValues()) {
        if (field.isDoNotUse(symbol.value) && symbol.name == QLatin1String("DoNotUse"))
            continue;
        const std::string name = symbol.name.toStdString();
        if (!runs.empty() && successorOf(runs.back().lastName) == name &&
            runs.back().last.toDouble() + 1 == symbol.value.toDouble()) {
            runs.back().last = symbol.value;
            runs.back().lastName = name;
            ++runs.back().length;
        } else {
            runs.push_back({symbol.value, symbol.value, name, name, 1});
        }
    }
    std::vector<std::string> names;
    for (const Run& run : runs) {
        const std::string first = run.first.toString().toStdString();
        const std::string last = run.last.toString().toStdString();
        if (run.length > 2) {
            names.push_back(fmt::format("{}..{} {}..{}", first, last, run.firstName, run.lastName));
            continue;
        }
        names.push_back(fmt::format("{} {}", first, run.firstName));
        if (run.length == 2)
            names.push_back(fmt::format("{} {}", last, run.lastName));
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
    Table(Buffer& buffer, const TQX_TypeLayout& layout, const MessageInfo* metadata)
        : out(buffer), type(layout), info(metadata)
    {
    }

    void append();

private:
    void appendHead();
    void appendRow(int index, size_t nameWidth, size_t typeWidth);
    void appendSymbols(const FieldInfo& field, size_t indentation);
    const FieldInfo* metadataOf(int index) const
    {
        return info ? info->getFieldInfos().value(index) : nullptr;
    }
    std::string nameOf(int index) const;
    std::string offsetOf(const TQX_FieldLayout& field) const;
    std::string typeOf(const TQX_FieldLayout& field) const;
    std::string presenceOf(const TQX_FieldLayout& field) const;
    std::string propertiesOf(int index) const;

    Buffer& out;
    const TQX_TypeLayout& type;
    const MessageInfo* info;
};

std::string Table::nameOf(int index) const
{
    const TQX_FieldLayout& field = type.fields[index];
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
                           type.fields[field.count].name, field.countsBytes ? " bytes" : "");
    case TQX_FieldKind::Blocks:
        return fmt::format("{}[{}]", TQX_layout(field.recordType)->name,
                           type.fields[field.count].name);
    case TQX_FieldKind::Embedded:
        return TQX_layout(field.recordType)->name;
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
        return fmt::format("when {} is {}", type.fields[field.selector].name, field.presenceValue);
    case TQX_Presence::Always:
        break;
    }
    return "";
}

std::string Table::propertiesOf(int index) const
{
    std::vector<std::string> properties;
    const TQX_FieldLayout& layout = type.fields[index];
    if (const FieldInfo* field = metadataOf(index)) {
        const std::string unit = field->getUnit().toStdString();
        if (field->hasScaleFactor())
            properties.push_back(
                fmt::format("x {}{}{}", field->getScaleFactor(), unit.empty() ? "" : " ", unit));
        else if (!unit.empty())
            properties.push_back(unit);
        if (field->hasDoNotUseValue())
            properties.push_back("not available: " +
                                 field->getDoNotUseValue().toString().toStdString());
        if (const std::vector<std::string> names = symbolsOf(*field);
            !names.empty() && isShort(names))
            properties.push_back(fmt::format("{}", fmt::join(names, ", ")));
        if (info->isIdentifying(index))
            properties.emplace_back("identifies");
        if (field->isVirtual())
            properties.emplace_back("derived");
    }
    if (std::string presence = presenceOf(layout); !presence.empty())
        properties.push_back(std::move(presence));
    if (*layout.meaning)
        properties.emplace_back(layout.meaning);
    return fmt::format("{}", fmt::join(properties, "; "));
}

void Table::appendHead()
{
    out.append(type.name);
    if (type.blockNumber != 0)
        out.append(fmt::format(", block {}", type.blockNumber));
    else
        out.append(", sub-block");
    out.append(fmt::format(", record type {}", type.recordType));
    if (type.highestRevision != 0)
        out.append(fmt::format(", revisions 0 to {}", type.highestRevision));
    if (!type.hasMessage)
        out.append(", no message class");
    out.append('\n');
    if (info && !info->getShortDescriptiveText().isEmpty())
        out.append(info->getShortDescriptiveText().toStdString() + "\n");
    out.append('\n');
}

/// The names of a field's values, as many in a line as it holds, below the field. What fits beside
/// it stands there already.
void Table::appendSymbols(const FieldInfo& field, size_t indentation)
{
    constexpr size_t lineWidth = 100;
    const std::vector<std::string> names = symbolsOf(field);
    if (isShort(names))
        return;
    std::string line;
    for (const std::string& name : names) {
        if (!line.empty() && indentation + line.size() + name.size() + 3 > lineWidth) {
            out.append(fmt::format("{:{}}{},\n", "", indentation, line));
            line.clear();
        }
        line += (line.empty() ? "" : ", ") + name;
    }
    out.append(fmt::format("{:{}}{}\n", "", indentation, line));
}

void Table::appendRow(int index, size_t nameWidth, size_t typeWidth)
{
    const TQX_FieldLayout& field = type.fields[index];
    std::string line = fmt::format("{:>6}  {:<{}}  {:<{}}  {}", offsetOf(field), nameOf(index),
                                   nameWidth, typeOf(field), typeWidth, propertiesOf(index));
    line.erase(line.find_last_not_of(' ') + 1);
    out.append(line);
    out.append('\n');
    if (const FieldInfo* metadata = metadataOf(index))
        appendSymbols(*metadata, nameWidth + 12);
}

void Table::append()
{
    appendHead();
    size_t nameWidth = 4;
    size_t typeWidth = 4;
    for (int i = 0; i < type.fieldCount; ++i) {
        nameWidth = std::max(nameWidth, nameOf(i).size());
        typeWidth = std::max(typeWidth, typeOf(type.fields[i]).size());
    }
    out.append(fmt::format("offset  {:<{}}  type\n", "name", nameWidth));
    for (int i = 0; i < type.fieldCount; ++i)
        appendRow(i, nameWidth, typeWidth);
}

} // namespace

void appendFieldTable(Buffer& out, const TQX_TypeLayout& type, const MessageInfo* info)
{
    Table(out, type, info).append();
}

} // namespace tqx
