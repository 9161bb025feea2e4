#include "tqx/log/read/BytesCheck.h"

#include "tqx/log/read/JsonLine.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/write/RawJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <map>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

using Kind = JsonValue::Kind;

bool isBitRange(const TQX_TypeLayout& type, std::string_view name)
{
    return std::any_of(type.fields, type.fields + type.fieldCount, [&](const auto& field) {
        return field.kind == TQX_FieldKind::Bits && name == field.name;
    });
}

/// The members of an object by ascending name; the last one of each name.
std::map<std::string_view, const JsonValue*> membersOf(const JsonValue& object)
{
    std::map<std::string_view, const JsonValue*> members;
    for (const JsonValue& value : object)
        members[value.name()] = &value;
    return members;
}

bool areEqual(const JsonValue& a, const JsonValue& b)
{
    if (a.kind != b.kind)
        return false;
    if (a.kind == Kind::String || (a.kind == Kind::Number && a.text() == b.text()))
        return a.text() == b.text();
    // One number can be written in many ways.
    return a.kind != Kind::Number ||
           nlohmann::json::parse(a.text()) == nlohmann::json::parse(b.text());
}

/// Whether all of `part` is in `whole`, ignoring members of objects that `whole` lacks.
bool isWithin(const JsonValue& part, const JsonValue& whole)
{
    if (!part.isStructured() || part.kind != whole.kind)
        return areEqual(part, whole);
    if (part.kind == Kind::Array) {
        return part.size() == whole.size() &&
               std::equal(part.begin(), part.end(), whole.begin(), isWithin);
    }
    const auto known = membersOf(whole);
    const auto given = membersOf(part);
    return std::all_of(given.begin(), given.end(), [&](const auto& member) {
        const auto found = known.find(member.first);
        return found == known.end() || isWithin(*member.second, *found->second);
    });
}

/// Writes the line of a block's stored values; nothing when it does not decode.
void writeValues(Buffer& line, const std::vector<uint8_t>& bytes, const Schema& schema)
{
    constexpr size_t headerSize = 8;
    if (bytes.size() < headerSize || bytes.size() > std::numeric_limits<uint16_t>::max())
        return;
    RecordDecoder decoder(schema);
    if (decoder.decode({bytes.data(), static_cast<uint16_t>(bytes.size()), 0}) < 0)
        return;
    const FieldFilter everything({}, schema);
    RawJson(everything).write(line, decoder.getDecoded());
}

std::string differenceFromFields(const TQX_TypeLayout& type, const JsonValue& given,
                                 const JsonValue& stored)
{
    if (given.kind != Kind::Object)
        return "fields";
    const auto known = membersOf(stored);
    for (const auto& [name, value] : membersOf(given)) {
        const auto found = known.find(name);
        if (found == known.end() ? !isBitRange(type, name) : !isWithin(*value, *found->second))
            return std::string(name);
    }
    return "";
}

} // namespace

std::string differenceFromBytes(const JsonValue* name, const JsonValue* fields,
                                const std::vector<uint8_t>& bytes, const Schema& schema)
{
    if (!name && !fields)
        return "";
    Buffer line;
    writeValues(line, bytes, schema);
    if (line.size() == 0)
        return "block";
    JsonLine parser;
    const auto stored = membersOf(parser.parse(line.view()));
    if (stored.count("fields") == 0)
        return "block";
    const std::string_view block = stored.at("block")->text();
    if (name && (name->kind != Kind::String || !equalNames(name->text(), block)))
        return "block";
    return fields ? differenceFromFields(*schema.findType(block), *fields, *stored.at("fields"))
                  : "";
}

} // namespace tqx
