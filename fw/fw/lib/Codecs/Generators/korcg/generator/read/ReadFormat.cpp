#include "read/ReadFormat.h"

#include "read/SymbolNames.h"

#include <fmt/format.h>

#include <algorithm>

namespace korcg::generator
{

namespace
{

constexpr int highestNumber = 65535;

void givenOnce(const YamlMap& map, std::string_view key, bool isGiven)
{
    if (isGiven)
        map.error(key, "is given in two places");
}

void readUnits(const ReadContext& context, const YamlMap& map, Format& format)
{
    for (const YAML::Node& unit : map.list("units")) {
        if (!unit.IsScalar()) {
            context.error(unit, "a unit must be a word");
        } else if (std::count(format.units.begin(), format.units.end(), unit.Scalar()) != 0) {
            context.error(unit, fmt::format("unit '{}' given twice", unit.Scalar()));
        } else {
            format.units.push_back(unit.Scalar());
        }
    }
}

void readScales(const ReadContext& context, const YamlMap& map, Format& format)
{
    for (const YAML::Node& node : map.list("scales")) {
        const std::optional<double> scale = realNumber(node);
        if (scale) {
            format.scales.push_back(*scale);
        } else {
            context.error(node, "a scale must be a number or a fraction \"1/3600\"");
        }
    }
}

void readRegistration(const ReadContext& context, const YamlMap& map, Format& format)
{
    for (const YAML::Node& node : map.list("registration")) {
        if (node.IsScalar()) {
            format.registration.push_back({node.Scalar(), context.at(node)});
        } else {
            context.error(node, "an entry of the registration must be the name of a type");
        }
    }
}

void readReserved(const ReadContext& context, const YamlMap& map, Format& format)
{
    for (const YAML::Node& node : map.list("reserved")) {
        const YamlMap entry(context, node, "a reserved type",
                            {"name", "record", "number", "codes", "sub"});
        ReservedType type;
        type.where = entry.where();
        type.name = entry.requiredText("name");
        type.record = entry.requiredInteger("record", 1, highestNumber).value_or(0);
        type.codes = entry.requiredInteger("codes", 0, highestNumber).value_or(0);
        type.number = entry.integer("number", 1, highestNumber).value_or(0);
        const bool isSub = entry.flag("sub").value_or(false);
        if (node.IsMap() && isSub == entry.has("number"))
            context.error(node, "a reserved type has either 'number' or 'sub: true'");
        if (entry.has("name"))
            format.reserved.push_back(type);
    }
}

void readSymbols(const ReadContext& context, const YamlMap& map, Format& format)
{
    if (!map.has("symbols"))
        return;
    const YAML::Node tables = map.node("symbols");
    if (!tables.IsMap()) {
        map.error("symbols", "must be a map of tables");
        return;
    }
    for (const auto& entry : tables) {
        if (!entry.first.IsScalar()) {
            context.error(entry.first, "the name of a symbol table must be a word");
            continue;
        }
        SymbolTable table = readSymbolTable(context, entry.first.Scalar(), entry.second);
        table.where = context.at(entry.first);
        const std::string name = table.name;
        if (!format.symbols.emplace(name, std::move(table)).second)
            context.error(entry.first, fmt::format("symbol table '{}' given twice", name));
    }
}

} // namespace

void readFormat(const ReadContext& context, const YAML::Node& document, Format& format)
{
    const YamlMap map(context, document, "the format",
                      {"format", "units", "scales", "registration", "reserved", "symbols"});
    if (map.has("format")) {
        givenOnce(map, "format", !format.name.empty());
        format.name = map.requiredText("format");
    }
    if (map.has("units")) {
        givenOnce(map, "units", !format.units.empty());
        readUnits(context, map, format);
    }
    if (map.has("scales")) {
        givenOnce(map, "scales", !format.scales.empty());
        readScales(context, map, format);
    }
    if (map.has("registration")) {
        givenOnce(map, "registration", !format.registration.empty());
        readRegistration(context, map, format);
    }
    readReserved(context, map, format);
    readSymbols(context, map, format);
}

} // namespace korcg::generator
