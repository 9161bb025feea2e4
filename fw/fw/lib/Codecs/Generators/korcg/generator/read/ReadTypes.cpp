#include "read/ReadTypes.h"

#include "model/Limits.h"
#include "read/Dictionary.h"
#include "read/Keys.h"
#include "read/ReadFields.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

constexpr int highestNumber = 65535; // wider than the ranges that the checks allow
constexpr int unknownNumber = -1;    // a main block all the same

void readBlockAttributes(const YamlMap& map, RecordType& type)
{
    type.number = map.requiredInteger("number", 1, highestNumber).value_or(unknownNumber);
    type.generation = map.integer("generation", 1, 255).value_or(1);
    type.flexrate = map.flag("flexrate").value_or(false);
    type.esoc = map.flag("esoc").value_or(false);
    type.kindName = map.text("kind").value_or("");
    const std::string timestamp = map.requiredText("timestamp");
    if (timestamp == "R" || timestamp == "S" || timestamp == "E") {
        type.timestamp = timestamp.front();
    } else if (map.has("timestamp")) {
        map.error("timestamp", "must be R, S or E");
    }
}

TypeDraft readType(const ReadContext& context, const YAML::Node& node)
{
    const bool isSub = static_cast<bool>(node["sub"]);
    const YamlMap map(context, node, isSub ? subBlockKeys() : blockKeys());
    TypeDraft draft;
    RecordType& type = draft.type;
    type.where = map.where();
    type.name = map.requiredText(isSub ? "sub" : "block");
    type.edition = map.integer("edition", 2, latestEdition).value_or(1);
    if (context.isAddition) {
        for (const std::string_view key : {"record", "edition"}) {
            if (map.has(key))
                map.error(key, "is for types of the format itself");
        }
    } else if (type.edition == 1) {
        type.record = map.requiredInteger("record", 1, highestNumber).value_or(0);
    } else if (map.has("record")) {
        map.error("record", "is in the ledger for types of later editions");
    }
    type.text = map.text("text").value_or("");
    type.hasMessage = map.flag("message").value_or(true);
    if (!isSub)
        readBlockAttributes(map, type);
    if (!map.has("fields"))
        map.error("fields", "is missing");
    for (const Definition& field : withGroups(context, map.list("fields")))
        draft.fields.push_back(readField(field.context, field.node));
    return draft;
}

} // namespace

std::vector<TypeDraft> readTypes(const ReadContext& context, const YAML::Node& list)
{
    std::vector<TypeDraft> drafts;
    for (const YAML::Node& node : list) {
        if (!node.IsMap()) {
            context.error(node, "a block or sub-block must be a map");
            continue;
        }
        const std::size_t errorsBefore = context.errors.count();
        drafts.push_back(readType(context, node));
        drafts.back().type.broken = context.errors.count() != errorsBefore;
    }
    return drafts;
}

} // namespace korcg::generator
