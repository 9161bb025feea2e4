#pragma once

#include "read/YamlMap.h"

#include <map>
#include <string>
#include <vector>

namespace korcg::generator
{

/// What the description says once and many blocks refer to: fields by their name, and groups of
/// fields.
struct Dictionary {
    std::map<std::string, Definition, std::less<>> fields;
    std::map<std::string, std::vector<Definition>, std::less<>> groups;
};

/// Reads `fields` and `groups` of a document that is a map.
void readDictionary(const ReadContext& context, const YAML::Node& document, Dictionary& dictionary);

/// Whether an element of a list of fields is one of `fields`: `- Latitude`, or with the key
/// `field`.
bool refersToDefinition(const YAML::Node& node);

/// The definition that an element of a list of fields refers to; null when it defines a field by
/// itself. A name without definition is reported.
const Definition* definitionOf(const ReadContext& context, const YAML::Node& node);

/// Elements of a list of fields, with those of groups in place of their names. Each comes with the
/// file that it is in.
std::vector<Definition> withGroups(const ReadContext& context, const std::vector<YAML::Node>& list);

} // namespace korcg::generator
