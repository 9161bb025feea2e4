#include "read/YamlMap.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <utility>

namespace korcg::generator
{

namespace
{

/// Quoted scalars carry this tag; they are texts whatever they contain.
bool isQuoted(const YAML::Node& node)
{
    return node.Tag() == "!";
}

std::optional<double> parseReal(std::string_view text)
{
    double value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace

Location ReadContext::at(const YAML::Node& node) const
{
    return {file, node.Mark().line + 1};
}

void ReadContext::error(const YAML::Node& node, std::string message) const
{
    errors.add(at(node), std::move(message));
}

std::optional<int64_t> WholeNumber::within(int64_t low, int64_t high) const
{
    constexpr uint64_t top = uint64_t{1} << 63;
    if (magnitude > top || (magnitude == top && !negative))
        return std::nullopt;
    const int64_t value =
        negative ? static_cast<int64_t>(0 - magnitude) : static_cast<int64_t>(magnitude);
    if (value < low || value > high)
        return std::nullopt;
    return value;
}

std::optional<WholeNumber> wholeNumber(const YAML::Node& node)
{
    if (!node.IsScalar() || isQuoted(node))
        return std::nullopt;
    std::string_view text = node.Scalar();
    WholeNumber number;
    if (!text.empty() && text.front() == '-') {
        number.negative = true;
        text.remove_prefix(1);
    }
    int base = 10;
    if (text.substr(0, 2) == "0x") {
        base = 16;
        text.remove_prefix(2);
    }
    const char* const last = text.data() + text.size();
    const auto [end, failure] = std::from_chars(text.data(), last, number.magnitude, base);
    if (failure != std::errc() || end != last)
        return std::nullopt;
    return number;
}

std::optional<double> realNumber(const YAML::Node& node)
{
    if (!node.IsScalar())
        return std::nullopt;
    const std::string_view text = node.Scalar();
    if (const std::size_t slash = text.find('/'); slash != std::string_view::npos) {
        const std::optional<double> above = parseReal(text.substr(0, slash));
        const std::optional<double> below = parseReal(text.substr(slash + 1));
        if (!above || !below || *below == 0)
            return std::nullopt;
        return *above / *below;
    }
    return isQuoted(node) ? std::nullopt : parseReal(text);
}

YamlMap::YamlMap(const ReadContext& context, const YAML::Node& node, const KeyTable& table)
    : YamlMap(context, node, table, nullptr)
{
}

YamlMap::YamlMap(const ReadContext& context, const YAML::Node& node, const KeyTable& table,
                 const Definition* definition)
    : m_context(context), m_node(node), m_what(table.what)
{
    if (node.IsMap()) {
        addKeys(node, table);
    } else if (definition == nullptr) {
        m_context.error(node, fmt::format("{} must be a map", m_what));
    }
    if (definition == nullptr)
        return;
    // A node is never assigned to: that would change what the other refers to.
    for (const auto& entry : definition->node) {
        const std::string key = entry.first.IsScalar() ? entry.first.Scalar() : "";
        if (table.has(key)) {
            m_values.emplace(key, Value{entry.second, &definition->context});
        } else {
            definition->context.error(entry.first,
                                      fmt::format("unknown key '{}' in {}", key, m_what));
        }
    }
    for (auto value = m_values.begin(); value != m_values.end();)
        value = value->second.node.IsNull() ? m_values.erase(value) : std::next(value);
}

void YamlMap::addKeys(const YAML::Node& node, const KeyTable& table)
{
    for (const auto& entry : node) {
        if (!entry.first.IsScalar()) {
            m_context.error(entry.first, fmt::format("a key of {} must be a word", m_what));
            continue;
        }
        const std::string& key = entry.first.Scalar();
        if (!table.has(key)) {
            m_context.error(entry.first, fmt::format("unknown key '{}' in {}", key, m_what));
        } else if (!m_values.emplace(key, Value{entry.second, &m_context}).second) {
            m_context.error(entry.first, fmt::format("key '{}' given twice in {}", key, m_what));
        }
    }
}

YAML::Node YamlMap::node(std::string_view key) const
{
    const auto found = m_values.find(key);
    return found == m_values.end() ? YAML::Node(YAML::NodeType::Undefined) : found->second.node;
}

Location YamlMap::where(std::string_view key) const
{
    const auto found = m_values.find(key);
    return found == m_values.end() || found->second.node.IsNull()
               ? where()
               : found->second.context->at(found->second.node);
}

const ReadContext& YamlMap::contextOf(std::string_view key) const
{
    const auto found = m_values.find(key);
    return found == m_values.end() ? m_context : *found->second.context;
}

void YamlMap::error(std::string_view key, std::string message) const
{
    m_context.errors.add(where(key), fmt::format("'{}' of {} {}", key, m_what, message));
}

void YamlMap::missing(std::string_view key) const
{
    if ((m_node.IsMap() || !m_values.empty()) && !has(key))
        m_context.errors.add(where(), fmt::format("'{}' of {} is missing", key, m_what));
}

std::optional<std::string> YamlMap::text(std::string_view key) const
{
    if (!has(key))
        return std::nullopt;
    const YAML::Node value = node(key);
    if (!value.IsScalar()) {
        error(key, "must be a text");
        return std::nullopt;
    }
    return value.Scalar();
}

std::string YamlMap::requiredText(std::string_view key) const
{
    missing(key);
    return text(key).value_or("");
}

std::optional<int> YamlMap::integer(std::string_view key, int low, int high) const
{
    if (!has(key))
        return std::nullopt;
    const std::optional<WholeNumber> number = wholeNumber(node(key));
    const std::optional<int64_t> value = number ? number->within(low, high) : std::nullopt;
    if (!value) {
        error(key, fmt::format("must be a whole number from {} to {}", low, high));
        return std::nullopt;
    }
    return static_cast<int>(*value);
}

std::optional<int> YamlMap::requiredInteger(std::string_view key, int low, int high) const
{
    missing(key);
    return integer(key, low, high);
}

std::optional<bool> YamlMap::flag(std::string_view key) const
{
    if (!has(key))
        return std::nullopt;
    const YAML::Node value = node(key);
    if (value.IsScalar() && !isQuoted(value)) {
        if (value.Scalar() == "true")
            return true;
        if (value.Scalar() == "false")
            return false;
    }
    error(key, "must be true or false");
    return std::nullopt;
}

std::optional<double> YamlMap::number(std::string_view key) const
{
    if (!has(key))
        return std::nullopt;
    const std::optional<double> value = realNumber(node(key));
    if (!value)
        error(key, "must be a number");
    return value;
}

std::vector<YAML::Node> YamlMap::list(std::string_view key) const
{
    if (!has(key))
        return {};
    const YAML::Node value = node(key);
    if (!value.IsSequence()) {
        error(key, "must be a list");
        return {};
    }
    return {value.begin(), value.end()};
}

} // namespace korcg::generator
