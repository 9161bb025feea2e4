#include "output/InspectionJson.h"

#include "TQX_codec.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace tqx::tool
{

namespace
{

using Json = nlohmann::ordered_json;
using Kind = InspectionRow::Kind;

const char* nameOf(Kind kind)
{
    switch (kind) {
    case Kind::Value:
        return "value";
    case Kind::Bits:
        return "bits";
    case Kind::Derived:
        return "derived";
    case Kind::Text:
        return "text";
    case Kind::Bytes:
        return "bytes";
    case Kind::SubBlock:
        return "sub-block";
    case Kind::Missing:
        return "missing";
    case Kind::TooMany:
        return "too many";
    case Kind::TooLong:
        return "too long";
    case Kind::Unknown:
        break;
    }
    return "unknown";
}

/// A number or string as it is; what JSON cannot express as a number becomes a string.
Json valueOf(const std::string& text)
{
    if (text == "-0")
        return -0.0; // as an integer it would lose its sign
    Json value = Json::parse(text, nullptr, false);
    return value.is_discarded() ? Json(text) : value;
}

void addUnlessEmpty(Json& object, const char* name, const std::string& text)
{
    if (!text.empty())
        object[name] = text;
}

Json jsonOf(const InspectionRow& row, const std::vector<uint8_t>& bytes)
{
    Json object = {{"kind", nameOf(row.kind)}, {"depth", row.depth}, {"path", row.path}};
    if (row.parent != InspectionRow::none)
        object["parent"] = row.parent;
    if (row.field)
        object["field"] = row.field->name;
    if (row.kind == Kind::SubBlock)
        object["type"] = row.field->sub->name;
    object["offset"] = row.offset;
    object["size"] = row.size;
    if (row.kind == Kind::Bits) {
        if (row.bitCount() != 0) {
            object["lowestBit"] = row.lowestBit();
            object["bits"] = row.bitCount();
        }
    } else if (row.kind != Kind::SubBlock && row.size != 0) {
        const uint8_t* begin = bytes.data() + row.offset;
        object["bytes"] = fmt::format("{:02x}", fmt::join(begin, begin + row.size, ""));
    }
    if (row.stated != 0)
        object["stated"] = row.stated;
    if (!row.raw.empty())
        object["raw"] = valueOf(row.raw);
    if (!row.isAvailable)
        object["available"] = false;
    if (!row.scaled.empty())
        object["value"] = valueOf(row.scaled);
    addUnlessEmpty(object, "unit", row.unit);
    addUnlessEmpty(object, "name", row.name);
    addUnlessEmpty(object, "error", row.error);
    addUnlessEmpty(object, "meaning", row.meaning());
    return object;
}

} // namespace

void appendInspectionJson(Buffer& out, const Inspection& inspection)
{
    Json object = {{"file", inspection.file}, {"offset", inspection.offset}};
    if (inspection.number) {
        object["number"] = *inspection.number;
        object["revision"] = inspection.revision;
    }
    if (inspection.type)
        object["block"] = inspection.type->name;
    if (inspection.length != 0)
        object["length"] = inspection.length;
    if (inspection.time)
        object["time"] = dateText(*inspection.time);
    object["intact"] = inspection.isIntact;
    if (inspection.code != 0) {
        object["code"] = inspection.code;
        object["codeName"] = inspection.schema.getErrorName(inspection.code);
    }
    Json& rows = object["rows"] = Json::array();
    for (const InspectionRow& row : inspection.rows)
        rows.push_back(jsonOf(row, inspection.bytes));
    object["faults"] = inspection.faults;
    // Texts of a log may contain control sequences for a terminal.
    out.append(object.dump(-1, ' ', true, Json::error_handler_t::replace));
    out.append('\n');
}

} // namespace tqx::tool
