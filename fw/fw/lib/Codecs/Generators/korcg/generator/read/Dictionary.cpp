#include "read/Dictionary.h"

#include <fmt/format.h>

namespace korcg::generator
{

namespace
{

bool isNamed(const ReadContext& context, const YAML::Node& key, std::string_view what)
{
    if (!key.IsScalar())
        context.error(key, fmt::format("the name of a {} must be a word", what));
    return key.IsScalar();
}

void readGroups(const ReadContext& context, const YAML::Node& groups, Dictionary& dictionary)
{
    for (const auto& entry : groups) {
        if (!isNamed(context, entry.first, "group"))
            continue;
        if (!entry.second.IsSequence()) {
            context.error(entry.second, "a group must be a list of fields");
            continue;
        }
        std::vector<Definition> elements;
        for (const YAML::Node& element : entry.second) {
            if (element.IsMap() && element["group"]) {
                context.error(element, "a group holds no other group");
            } else {
                elements.push_back({context, element});
            }
        }
        if (!dictionary.groups.emplace(entry.first.Scalar(), std::move(elements)).second)
            context.error(entry.first, fmt::format("group '{}' given twice", entry.first.Scalar()));
    }
}

void readFieldDefinitions(const ReadContext& context, const YAML::Node& fields,
                          Dictionary& dictionary)
{
    for (const auto& entry : fields) {
        if (!isNamed(context, entry.first, "field"))
            continue;
        const std::string& name = entry.first.Scalar();
        if (!entry.second.IsMap()) {
            context.error(entry.second, "a field must be a map");
        } else if (entry.second["name"] || entry.second["field"]) {
            context.error(entry.second, fmt::format("'{}' already has a name", name));
        } else if (!dictionary.fields.emplace(name, Definition{context, entry.second}).second) {
            context.error(entry.first, fmt::format("field '{}' given twice", name));
        }
    }
}

} // namespace

void readDictionary(const ReadContext& context, const YAML::Node& document, Dictionary& dictionary)
{
    for (const auto& entry : document) {
        const bool isFields = entry.first.IsScalar() && entry.first.Scalar() == "fields";
        const bool isGroups = entry.first.IsScalar() && entry.first.Scalar() == "groups";
        if (!isFields && !isGroups)
            continue;
        if (!entry.second.IsMap()) {
            context.error(entry.second,
                          fmt::format("'{}' of the format must be a map", entry.first.Scalar()));
        } else if (isFields) {
            readFieldDefinitions(context, entry.second, dictionary);
        } else {
            readGroups(context, entry.second, dictionary);
        }
    }
}

bool refersToDefinition(const YAML::Node& node)
{
    return node.IsScalar() || (node.IsMap() && node["field"]);
}

const Definition* definitionOf(const ReadContext& context, const YAML::Node& node)
{
    if (!refersToDefinition(node))
        return nullptr;
    const YAML::Node name = node.IsMap() ? node["field"] : node;
    const auto found = context.dictionary->fields.find(name.IsScalar() ? name.Scalar() : "");
    if (found != context.dictionary->fields.end())
        return &found->second;
    context.error(name, name.IsScalar()
                            ? fmt::format("there is no field '{}' in 'fields'", name.Scalar())
                            : "'field' must be the name of one in 'fields'");
    return nullptr;
}

std::vector<Definition> withGroups(const ReadContext& context, const std::vector<YAML::Node>& list)
{
    std::vector<Definition> all; // a context cannot be assigned, so no insert()
    for (const YAML::Node& node : list) {
        const YAML::Node group = node.IsMap() ? node["group"] : YAML::Node();
        if (!node.IsMap() || !group) {
            all.push_back({context, node});
        } else if (node.size() != 1 || !group.IsScalar()) {
            context.error(node, "a group must be {group: name} and nothing else");
        } else if (const auto found = context.dictionary->groups.find(group.Scalar());
                   found != context.dictionary->groups.end()) {
            for (const Definition& element : found->second)
                all.push_back(element);
        } else {
            context.error(group, fmt::format("there is no group '{}'", group.Scalar()));
        }
    }
    return all;
}

} // namespace korcg::generator
