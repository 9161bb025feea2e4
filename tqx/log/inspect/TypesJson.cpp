#include "tqx/log/inspect/TypesJson.h"

#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"

#include "FieldInfo.h"
#include "MessageInfo.h"
#include "TQXDecoder.h"
#include "TQX_FieldInfo.h"

#include <string>

namespace tqx
{

namespace
{

/// An object whose members are appended one after the other.
class Object
{
public:
    explicit Object(Buffer& buffer) : out(buffer) { out.append('{'); }

    /// The buffer, behind the name of a member.
    Buffer& member(const char* name)
    {
        if (!first)
            out.append(',');
        first = false;
        out.append(json::key(name));
        return out;
    }

    void text(const char* name, const QString& value)
    {
        json::appendString(member(name), value.toStdString());
    }
    void number(const char* name, int64_t value) { number::appendSigned(member(name), value); }
    void real(const char* name, double value) { json::appendDouble(member(name), value); }
    void boolean(const char* name, bool value) { member(name).append(value ? "true" : "false"); }
    void flag(const char* name, bool value)
    {
        if (value)
            boolean(name, true);
    }
    void close() { out.append('}'); }

private:
    Buffer& out;
    bool first = true;
};

const char* typeName(const FieldType& type)
{
    switch (type.getKind()) {
    case FieldKind::U:
        return "u";
    case FieldKind::I:
        return "i";
    case FieldKind::F32:
        return "f32";
    case FieldKind::F64:
        return "f64";
    case FieldKind::Ch:
        return "ch";
    default:
        return "sub";
    }
}

void appendValue(Buffer& out, const FieldValue& value)
{
    if (value.getKind() == FieldKind::F32)
        json::appendFloat(out, value.getF32());
    else if (value.getKind() == FieldKind::F64)
        json::appendDouble(out, value.getF64());
    else
        out.append(value.toString().toStdString());
}

void appendSymbols(Object& object, const FieldInfo& field)
{
    if (field.getSymbolicValues().isEmpty())
        return;
    Buffer& out = object.member("symbols");
    Object symbols(out);
    for (const FieldInfo::SymbolicValue& symbol : field.getSymbolicValues())
        symbols.text(symbol.value.toString().toStdString().c_str(), symbol.name);
    symbols.close();
}

void appendSubFields(Object& object, const FieldInfo& field)
{
    if (field.getSubFieldInfos().isEmpty())
        return;
    Buffer& out = object.member("subFields");
    const char* separator = "[";
    for (const FieldInfo* subField : field.getSubFieldInfos()) {
        out.append(separator);
        json::appendString(out, subField->getName().toStdString());
        separator = ",";
    }
    out.append(']');
}

/// What the field is, and where it is on the wire if that is the same in all blocks: its first byte
/// in the block or sub-block, or its first bit in the word.
void appendPlace(Object& object, const Kor::MessageApi::TQX_FieldLayout& field)
{
    using Kind = Kor::MessageApi::TQX_FieldKind;
    if (*field.meaning != '\0')
        object.text("description", field.meaning);
    if (field.kind == Kind::Bits)
        object.number("bit", field.shift);
    else if (field.kind != Kind::Derived && field.wireOffset >= 0)
        object.number("offset", field.wireOffset);
}

void appendField(Buffer& out, const FieldInfo& field, bool isIdentifying)
{
    Object object(out);
    object.text("name", field.getName());
    if (const auto* own = dynamic_cast<const TQX_FieldInfo*>(&field)) {
        object.text("class", own->row().className);
        appendPlace(object, own->layout());
    }
    const FieldType& type = field.getType();
    object.text("type", typeName(type));
    if (type.getWidth() != 0)
        object.number("width", type.getWidth());
    if (!field.getUnit().isEmpty())
        object.text("unit", field.getUnit());
    if (field.hasScaleFactor())
        object.real("scale", field.getScaleFactor());
    if (field.getPrecision() >= 0)
        object.number("precision", field.getPrecision());
    if (field.getRole() != FieldInfo::Unset)
        object.number("role", field.getRole());
    object.flag("optional", field.isOptional());
    object.flag("repeated", field.isRepeated());
    object.flag("virtual", field.isVirtual());
    object.flag("bitMask", field.getRepresentationMode() == FieldValue::BitMask);
    object.flag("identifying", isIdentifying);
    if (field.hasDoNotUseValue())
        appendValue(object.member("doNotUse"), field.getDoNotUseValue());
    appendSymbols(object, field);
    appendSubFields(object, field);
    if (const MessageInfo* sub = type.getSubMessageInfo())
        object.text("subMessage", sub->getName());
    object.close();
}

void appendAttributes(Object& object, const MessageInfo& type)
{
    object.number("version", type.getAttribute("version").toInt());
    object.boolean("flexrate", type.getAttribute("flexrate").toBool());
    object.boolean("esoc", type.getAttribute("esoc").toBool());
    object.text("timestamp", QString(QChar(type.getAttribute("timestamp").toInt())));
    if (!type.getShortDescriptiveText().isEmpty())
        object.text("description", type.getShortDescriptiveText());
}

void appendType(Buffer& out, const MessageInfo& type, int recordType)
{
    Object object(out);
    object.text("name", type.getName());
    object.text("kind", type.isMain() ? "main" : "sub");
    if (type.isMain())
        object.number("number", type.getAttribute("blocknr").toInt());
    object.number("recordType", recordType);
    if (type.isMain())
        appendAttributes(object, type);
    Buffer& fields = object.member("fields");
    fields.append('[');
    for (int i = 0; i < type.getFieldInfos().size(); ++i) {
        if (i != 0)
            fields.append(',');
        appendField(fields, *type.getFieldInfos()[i], type.isIdentifying(i));
    }
    fields.append(']');
    object.close();
}

} // namespace

void appendTypesJson(Buffer& out, const std::vector<const MessageInfo*>& types)
{
    // A decoder knows the record types by their metadata.
    const TQXDecoder decoder;
    const char* separator = "[\n";
    for (const MessageInfo* type : types) {
        out.append(separator);
        appendType(out, *type, decoder.getMessageEnum(type));
        separator = ",\n";
    }
    out.append(types.empty() ? "[]\n" : "\n]\n");
}

} // namespace tqx
