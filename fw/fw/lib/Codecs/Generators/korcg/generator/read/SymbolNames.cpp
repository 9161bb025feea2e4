#include "read/SymbolNames.h"

#include "model/Limits.h"
#include "read/Keys.h"

#include <fmt/format.h>

#include <cstdlib>
#include <set>

namespace korcg::generator
{

namespace
{

constexpr int64_t lowestValue = -(int64_t{1} << 31);
constexpr int64_t highestValue = (int64_t{1} << 32) - 1;
constexpr int64_t longestRange = 4096;

/// Where the number is in the name of a range.
struct NumberPlace {
    std::size_t begin = 0;
    std::size_t end = 0;
    int digits = 1;
};

/// Finds the single "%d" or "%0<digit>d".
std::optional<NumberPlace> numberPlace(const std::string& name)
{
    NumberPlace place;
    place.begin = name.find('%');
    if (place.begin == std::string::npos)
        return std::nullopt;
    std::size_t at = place.begin + 1;
    if (at + 1 < name.size() && name[at] == '0' && name[at + 1] >= '1' && name[at + 1] <= '9') {
        place.digits = name[at + 1] - '0';
        at += 2;
    }
    if (at >= name.size() || name[at] != 'd' || name.find('%', at) != std::string::npos)
        return std::nullopt;
    place.end = at + 1;
    return place;
}

class TableReader
{
public:
    TableReader(const ReadContext& context, SymbolTable& table) : m_context(context), m_table(table)
    {
    }

    void readPair(const YAML::Node& key, const YAML::Node& name)
    {
        const std::optional<WholeNumber> number = wholeNumber(key);
        const std::optional<int64_t> value =
            number ? number->within(lowestValue, highestValue) : std::nullopt;
        if (!value) {
            m_context.error(key, "a named value must be a whole number of up to 32 bits");
        } else if (!name.IsScalar()) {
            m_context.error(key, fmt::format("the name of {} must be a text", *value));
        } else {
            add(key, *value, name.Scalar());
        }
    }

    void readEntry(const YAML::Node& node)
    {
        if (node.IsMap() && node["value"]) {
            const YamlMap map(m_context, node, namedValueKeys());
            const std::string name = map.requiredText("name");
            m_edition = map.integer("edition", 1, latestEdition).value_or(1);
            if (map.has("name"))
                readPair(map.node("value"), YAML::Node(name));
            m_edition = 1;
            return;
        }
        const YamlMap map(m_context, node, namedRangeKeys());
        const std::optional<int> from = map.requiredInteger("from", 0, 65535);
        const std::optional<int> to = map.requiredInteger("to", 0, 65535);
        const std::string name = map.requiredText("name");
        const std::optional<int> start = map.integer("start", 0, 65535);
        const std::optional<NumberPlace> place = numberPlace(name);
        if (map.has("name") && !place)
            map.error("name", "must hold one %d or %02d");
        if (!from || !to || !place)
            return;
        if (*to < *from || *to - *from >= longestRange) {
            map.error("to", "must be 'from' or more, but not much more");
            return;
        }
        m_edition = map.integer("edition", 1, latestEdition).value_or(1);
        for (int value = *from; value <= *to; ++value) {
            add(node, value,
                fmt::format("{}{:0{}d}{}", name.substr(0, place->begin),
                            start.value_or(*from) + value - *from, place->digits,
                            name.substr(place->end)));
        }
        m_edition = 1;
    }

private:
    void add(const YAML::Node& node, int64_t value, std::string name)
    {
        if (name.empty()) {
            m_context.error(node, fmt::format("the name of {} is empty", value));
        } else if (!m_values.insert(value).second) {
            m_context.error(node, fmt::format("value {} named twice in symbol table '{}'", value,
                                              m_table.name));
        } else {
            m_table.values.push_back({value, std::move(name), m_edition});
        }
    }

    const ReadContext& m_context;
    SymbolTable& m_table;
    std::set<int64_t> m_values;
    int m_edition = 1; ///< of the entry being read
};

} // namespace

SymbolTable readSymbolTable(const ReadContext& context, const std::string& name,
                            const YAML::Node& node)
{
    SymbolTable table;
    table.name = name;
    TableReader reader(context, table);
    if (node.IsMap()) {
        for (const auto& entry : node)
            reader.readPair(entry.first, entry.second);
    } else if (node.IsSequence()) {
        for (const YAML::Node& entry : node)
            reader.readEntry(entry);
    } else {
        context.error(node, fmt::format("symbol table '{}' must be a map or a list", name));
    }
    return table;
}

} // namespace korcg::generator
