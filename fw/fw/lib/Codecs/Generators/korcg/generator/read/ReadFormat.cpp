#include "read/ReadFormat.h"

#include "read/Keys.h"
#include "read/SymbolNames.h"

#include <fmt/format.h>

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
        const auto entry = unit.IsMap() && unit.size() == 1 ? unit.begin() : unit.end();
        if (entry == unit.end() || !entry->first.IsScalar() || !entry->second.IsScalar() ||
            entry->second.Scalar().empty()) {
            context.error(unit, "a unit must be a word with its symbol, as in 'meter: m'");
        } else if (!format.units.emplace(entry->first.Scalar(), entry->second.Scalar()).second) {
            context.error(unit, fmt::format("unit '{}' given twice", entry->first.Scalar()));
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
            format.registration.push_back({node.Scalar(), context.at(node), 1});
        } else {
            context.error(node, "an entry of the registration must be the name of a type");
        }
    }
}

void readFirstEdition(const ReadContext& context, const YamlMap& map, Format& format)
{
    const YamlMap totals(context, map.node("first_edition"), firstEditionKeys());
    const auto number = [&](std::string_view key) {
        return totals.integer(key, 1, highestNumber).value_or(0);
    };
    const auto code = [&](std::string_view key) {
        return totals.integer(key, -highestNumber, -1).value_or(0);
    };
    format.first = {totals.where(),         number("types"),          number("leaves"),
                    number("owners"),       number("overflow_after"), code("overflow_code"),
                    code("first_disabled"), number("codes")};
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
    const YamlMap map(context, document, formatKeys());
    if (context.isAddition) {
        for (const std::string_view key : {"format", "units", "registration", "first_edition"}) {
            if (map.has(key))
                map.error(key, "is only for the description of a whole format");
        }
        if (map.has("scales"))
            readScales(context, map, format);
        readSymbols(context, map, format);
        return;
    }
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
    if (map.has("first_edition")) {
        givenOnce(map, "first_edition", format.first.where.line != 0);
        readFirstEdition(context, map, format);
    }
    readSymbols(context, map, format);
}

} // namespace korcg::generator
