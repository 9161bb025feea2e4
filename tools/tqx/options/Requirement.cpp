#include "options/Requirement.h"

#include "io/ToolError.h"
#include "options/Numbers.h"
#include "tqx/gnss/quality/Figures.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <cmath>

namespace tqx::tool
{

namespace
{

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n';
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// The parts between occurrences of a word that has blanks around it.
std::vector<std::string_view> splitAt(std::string_view text, std::string_view word)
{
    std::vector<std::string_view> parts;
    size_t begin = 0;
    for (size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const size_t end = at + word.size();
        if (at == 0 || !isBlank(text[at - 1]) || end >= text.size() || !isBlank(text[end]))
            continue;
        parts.push_back(text.substr(begin, at - begin));
        begin = end;
    }
    parts.push_back(text.substr(begin));
    return parts;
}

bool holds(double value, const std::string& sign, double limit)
{
    if (std::isnan(value))
        return false;
    if (sign == "<")
        return value < limit;
    if (sign == "<=")
        return value <= limit;
    if (sign == ">")
        return value > limit;
    if (sign == ">=")
        return value >= limit;
    return (std::fabs(value - limit) < 1e-9) == (sign == "==");
}

} // namespace

Requirement::Requirement(std::string_view text)
{
    for (const std::string_view alternative : splitAt(text, "or")) {
        std::vector<Comparison>& all = m_alternatives.emplace_back();
        for (const std::string_view comparison : splitAt(alternative, "and"))
            all.push_back(parse(trimmed(comparison)));
    }
}

Requirement::Comparison Requirement::parse(std::string_view words)
{
    const size_t sign = words.find_first_of("<>=!");
    if (words.empty() || sign == std::string_view::npos) {
        throw ToolError(fmt::format("report: --require needs comparisons such as 'completeness >= "
                                    "0.98', not '{}'",
                                    shortened(words)));
    }
    const size_t number = words.find_first_not_of("<>=!", sign);
    const std::string name(trimmed(words.substr(0, sign)));
    Comparison comparison;
    comparison.figure = quality::findFigure(name);
    if (!comparison.figure) {
        std::vector<std::string_view> names;
        for (const quality::Figure& figure : quality::figures())
            names.emplace_back(figure.key);
        throw ToolError("report: " + unknownName("figure", name, names));
    }
    comparison.sign = words.substr(sign, number - sign);
    const bool isSign = comparison.sign == "<" || comparison.sign == "<=" ||
                        comparison.sign == ">" || comparison.sign == ">=" ||
                        comparison.sign == "==" || comparison.sign == "!=";
    if (!isSign) {
        throw ToolError(fmt::format("report: --require: {} is not one of < <= > >= == !=",
                                    shortened(comparison.sign)));
    }
    try {
        std::string_view limit =
            number == std::string_view::npos ? "" : trimmed(words.substr(number));
        const bool isPercent = !limit.empty() && limit.back() == '%';
        if (isPercent)
            limit = trimmed(limit.substr(0, limit.size() - 1));
        comparison.limit = numbers::real(limit, -1e15, 1e15) / (isPercent ? 100 : 1);
    } catch (const DataError& error) {
        throw ToolError(fmt::format("report: --require: number after {}: {}", name, error.what()));
    }
    comparison.text = words;
    return comparison;
}

std::vector<std::string> Requirement::findFailures(const quality::Quality& quality) const
{
    std::vector<std::string> failures;
    for (const std::vector<Comparison>& alternative : m_alternatives) {
        bool isFulfilled = true;
        for (const Comparison& each : alternative) {
            const double value = each.figure->value(quality);
            if (holds(value, each.sign, each.limit))
                continue;
            isFulfilled = false;
            failures.push_back(
                std::isnan(value)
                    ? fmt::format("{}: {} is not known", each.text, each.figure->key)
                    : fmt::format("{}: {} is {:.6g}", each.text, each.figure->key, value));
        }
        if (isFulfilled)
            return {};
    }
    return failures;
}

} // namespace tqx::tool
