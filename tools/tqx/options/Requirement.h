#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tqx::quality
{
struct Figure;
struct Quality;
} // namespace tqx::quality

namespace tqx::tool
{

/// What a report must fulfil: comparisons of figures with numbers, joined by `and` and `or`; `and`
/// binds tighter: "completeness >= 0.98 and slips_per_hour < 5".
class Requirement
{
public:
    Requirement() = default;

    /// Throws ToolError with the reason.
    explicit Requirement(std::string_view text);

    bool isEmpty() const { return m_alternatives.empty(); }

    /// The comparisons that do not hold, in words, if they make the whole fail; else none.
    /// Comparisons with an unknown figure never hold.
    std::vector<std::string> findFailures(const quality::Quality& quality) const;

private:
    struct Comparison {
        const quality::Figure* figure;
        std::string sign;
        double limit;
        std::string text;
    };

    static Comparison parse(std::string_view words);

    std::vector<std::vector<Comparison>> m_alternatives;
};

} // namespace tqx::tool
