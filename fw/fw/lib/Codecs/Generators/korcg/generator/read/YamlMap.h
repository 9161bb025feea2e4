#pragma once

#include "model/Errors.h"
#include "read/Keys.h"

#include <yaml-cpp/yaml.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korcg::generator
{

struct Dictionary;

/// What every reading function needs: the file being read and where to report.
struct ReadContext {
    std::string file;
    Errors& errors;
    const Dictionary* dictionary; ///< what elements of field lists may refer to
    bool isAddition = false;      ///< whether it adds types to a format that is known

    Location at(const YAML::Node& node) const;
    void error(const YAML::Node& node, std::string message) const;
};

/// A piece of YAML with the file that it is in.
struct Definition {
    ReadContext context;
    YAML::Node node;
};

/// A whole number: decimal or 0x, with an optional minus sign.
struct WholeNumber {
    bool negative = false;
    uint64_t magnitude = 0;

    /// The value when it lies in the range.
    std::optional<int64_t> within(int64_t low, int64_t high) const;
};

/// Whole number of a plain (unquoted) scalar.
std::optional<WholeNumber> wholeNumber(const YAML::Node& node);

/// Floating-point number of a plain scalar; a fraction "1/3600" may be quoted.
std::optional<double> realNumber(const YAML::Node& node);

/// A map whose keys are all known. Every getter reports a value of the wrong type, with the name
/// of the key and what was expected, and then behaves as if the key were absent.
class YamlMap
{
public:
    /// Keys that are not in the table, and keys given twice, are reported at once; so is a node
    /// that is not a map.
    YamlMap(const ReadContext& context, const YAML::Node& node, const KeyTable& table);
    /// A node that refers to a definition: it has the keys of the definition, but for those that it
    /// gives itself; `~` leaves one out. The node may be the bare name of the definition.
    YamlMap(const ReadContext& context, const YAML::Node& node, const KeyTable& table,
            const Definition* definition);

    bool has(std::string_view key) const { return m_values.find(key) != m_values.end(); }
    /// Value of a key, or an undefined node.
    YAML::Node node(std::string_view key) const;
    /// Where the value of the key is, or the map when the key is absent.
    Location where(std::string_view key) const;
    Location where() const { return m_context.at(m_node); }
    /// The context of the value of a key, which is another one when the definition has it.
    const ReadContext& contextOf(std::string_view key) const;

    std::optional<std::string> text(std::string_view key) const;
    /// Reports an absent key too; empty when absent or wrong.
    std::string requiredText(std::string_view key) const;
    std::optional<int> integer(std::string_view key, int low, int high) const;
    std::optional<int> requiredInteger(std::string_view key, int low, int high) const;
    std::optional<bool> flag(std::string_view key) const;
    std::optional<double> number(std::string_view key) const;
    /// Elements of a list value; empty when absent or wrong.
    std::vector<YAML::Node> list(std::string_view key) const;

    void error(std::string_view key, std::string message) const;

private:
    void addKeys(const YAML::Node& node, const KeyTable& table);
    void missing(std::string_view key) const;

    struct Value {
        YAML::Node node;
        const ReadContext* context;
    };

    const ReadContext& m_context;
    YAML::Node m_node;
    std::string m_what;
    std::map<std::string, Value, std::less<>> m_values;
};

} // namespace korcg::generator
