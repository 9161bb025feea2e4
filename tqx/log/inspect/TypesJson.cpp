#include "tqx/log/inspect/TypesJson.h"

#include "TQX_FieldFacts.h"
#include "TQX_RecordAccess.h"
#include "tqx/log/inspect/FieldNames.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// An object whose members are appended one after the other.
class Object
{
public:
    explicit Object(Buffer& buffer) : m_out(buffer) { m_out.append('{'); }

    /// The buffer, after the name of a member.
    Buffer& member(const char* name)
    {
        if (!m_first)
            m_out.append(',');
        m_first = false;
        m_out.append(json::key(name));
        return m_out;
    }

    void text(const char* name, std::string_view value) { json::appendString(member(name), value); }
    void number(const char* name, int64_t value) { number::appendSigned(member(name), value); }
    void real(const char* name, double value) { json::appendDouble(member(name), value); }
    void boolean(const char* name, bool value) { member(name).append(value ? "true" : "false"); }
    void flag(const char* name, bool value)
    {
        if (value)
            boolean(name, true);
    }
    void close() { m_out.append('}'); }

private:
    Buffer& m_out;
    bool m_first = true;
};

const char* typeName(const TQX_FieldLayout& field)
{
    switch (field.type) {
    case TQX_MemberType::F32:
        return "f32";
    case TQX_MemberType::F64:
        return "f64";
    case TQX_MemberType::Char:
        return "ch";
    case TQX_MemberType::Record:
        return "sub";
    default:
        return TQX_isSigned(field) ? "i" : "u";
    }
}

void appendDoNotUse(Object& object, const TQX_FieldLayout& field, const TQX_FieldFacts& facts)
{
    if (!facts.has(TQX_FieldFacts::HasDoNotUse))
        return;
    Buffer& out = object.member("doNotUse");
    if (field.type == TQX_MemberType::F32) {
        json::appendFloat(out, static_cast<float>(TQX_realDoNotUse(facts)));
    } else if (field.type == TQX_MemberType::F64) {
        json::appendDouble(out, TQX_realDoNotUse(facts));
    } else {
        out.append(doNotUseText(field, facts));
    }
}

void appendSymbols(Object& object, const TQX_FieldLayout& field, const TQX_FieldFacts& facts)
{
    const TQX_NamedValues named = TQX_namedValues(facts);
    const bool namesDoNotUse = facts.has(TQX_FieldFacts::NamesDoNotUse);
    if (named.empty() && !namesDoNotUse)
        return;
    Buffer& out = object.member("symbols");
    Object symbols(out);
    for (const TQX_NamedValue& value : named)
        symbols.text(std::to_string(value.value).c_str(), value.name);
    if (namesDoNotUse)
        symbols.text(doNotUseText(field, facts).c_str(), "DoNotUse");
    symbols.close();
}

void appendNames(Object& object, const char* name, const std::vector<std::string>& names)
{
    if (names.empty())
        return;
    Buffer& out = object.member(name);
    const char* separator = "[";
    for (const std::string& each : names) {
        out.append(separator);
        json::appendString(out, each);
        separator = ",";
    }
    out.append(']');
}

/// What the field is, and where it is on the wire if that is the same in all blocks: its first byte
/// in the block or sub-block, or its first bit in the word.
void appendPlace(Object& object, const TQX_FieldLayout& field)
{
    if (*field.meaning != '\0')
        object.text("description", field.meaning);
    if (field.summary != TQX_Summary::None)
        return;
    if (field.kind == TQX_FieldKind::Bits) {
        object.number("bit", field.shift);
    } else if (field.kind != TQX_FieldKind::Derived && field.wireOffset >= 0) {
        object.number("offset", field.wireOffset);
    }
}

std::vector<std::string> subFieldsOf(const TQX_TypeLayout& type, int index)
{
    std::vector<std::string> names;
    for (int i = 0; i < type.fieldCount; ++i) {
        if (type.fields[i].parent == index)
            names.emplace_back(type.fields[i].name);
    }
    return names;
}

/// The class of the field in the Qt library.
std::string fieldClass(const TQX_TypeLayout& type, const TQX_FieldLayout& field)
{
    std::string name = field.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return std::string("TQX_") + type.name + '_' + name + "_FieldInfo";
}

void appendField(Buffer& out, const TQX_TypeLayout& type, int index)
{
    using Facts = TQX_FieldFacts;
    const TQX_FieldLayout& field = type.fields[index];
    const Facts& facts = TQX_factsOf(type, index);
    Object object(out);
    object.text("name", field.name);
    if (type.hasMessage)
        object.text("class", fieldClass(type, field));
    appendPlace(object, field);
    object.text("type", typeName(field));
    if (field.width != 0)
        object.number("width", field.width);
    if (!TQX_unit(facts).empty())
        object.text("unit", TQX_unit(facts));
    if (TQX_scale(facts) != 0)
        object.real("scale", TQX_scale(facts));
    if (facts.precision >= 0)
        object.number("precision", facts.precision);
    if (facts.role != TQX_Role::Unset)
        object.number("role", static_cast<int>(facts.role));
    object.flag("optional", facts.has(Facts::Optional));
    object.flag("repeated", facts.has(Facts::Repeated));
    object.flag("virtual", facts.has(Facts::Virtual));
    object.flag("bitMask", facts.has(Facts::BitMask));
    object.flag("identifying", facts.has(Facts::Identifying));
    object.flag("whole", facts.has(Facts::Whole));
    appendDoNotUse(object, field, facts);
    appendNames(object, "inputs", inputNames(type, facts));
    appendSymbols(object, field, facts);
    appendNames(object, "subFields", subFieldsOf(type, index));
    if (field.recordType != 0)
        object.text("subMessage", field.sub->name);
    object.close();
}

void appendAttributes(Object& object, const TQX_TypeFacts& facts)
{
    object.number("version", facts.generation);
    object.boolean("flexrate", facts.flexrate);
    object.boolean("esoc", facts.esoc);
    object.text("timestamp", std::string_view(&facts.timestamp, 1));
    if (facts.description != 0)
        object.text("description", TQX_description(facts));
}

void appendType(Buffer& out, const TQX_TypeLayout& type)
{
    const bool isMain = type.blockNumber != 0;
    Object object(out);
    object.text("name", type.name);
    object.text("kind", isMain ? "main" : "sub");
    if (isMain)
        object.number("number", type.blockNumber);
    object.number("recordType", type.recordType);
    if (isMain)
        appendAttributes(object, TQX_factsOf(type));
    Buffer& fields = object.member("fields");
    fields.append('[');
    for (int i = 0; i < type.fieldCount; ++i) {
        if (i != 0)
            fields.append(',');
        appendField(fields, type, i);
    }
    fields.append(']');
    object.close();
}

} // namespace

std::vector<const TQX_TypeLayout*> registeredTypes(const Schema& schema)
{
    std::vector<const TQX_TypeLayout*> types;
    schema.forEachType([&](const TQX_TypeLayout& type) {
        if (TQX_factsOf(type).registration != 0)
            types.push_back(&type);
    });
    std::sort(types.begin(), types.end(), [](const TQX_TypeLayout* a, const TQX_TypeLayout* b) {
        const auto place = [](const TQX_TypeLayout& type) {
            return std::pair(type.described != nullptr, TQX_factsOf(type).registration);
        };
        return place(*a) < place(*b);
    });
    return types;
}

void appendTypesJson(Buffer& out, const std::vector<const TQX_TypeLayout*>& types)
{
    const char* separator = "[\n";
    for (const TQX_TypeLayout* type : types) {
        out.append(separator);
        appendType(out, *type);
        separator = ",\n";
    }
    out.append(types.empty() ? "[]\n" : "\n]\n");
}

} // namespace tqx
