#include "tqx/log/select/Expression.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

namespace tqx
{

namespace
{

bool isLetter(char c)
{
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}

bool isDigit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c));
}

template<typename Integer>
bool readWhole(std::string_view text, Integer& number, int base)
{
    const auto [stop, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, base);
    return error == std::errc() && stop == text.data() + text.size();
}

/// Integers that 64 bits hold exactly, everything else as a double.
std::optional<Number> readNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        uint64_t bits = 0;
        if (!readWhole(text.substr(2), bits, 16))
            return std::nullopt;
        return Number::ofUnsigned(bits);
    }
    uint64_t whole = 0;
    if (readWhole(text, whole, 10))
        return Number::ofUnsigned(whole);
    int64_t negative = 0;
    if (readWhole(text, negative, 10))
        return Number::ofSigned(negative);
    double real = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), real);
    if (error != std::errc() || stop != text.data() + text.size() || !std::isfinite(real))
        return std::nullopt;
    return Number::ofReal(real);
}

} // namespace

void Expression::fail(size_t position, const std::string& why) const
{
    constexpr size_t most = 60; // bytes shown on each side
    const auto isWithin = [&](size_t at) {
        return at < m_source.size() && (static_cast<unsigned char>(m_source[at]) & 0xc0U) == 0x80;
    };
    size_t begin = position - std::min(position, most);
    size_t end = std::min(m_source.size(), position + most);
    // Not inside a character.
    while (begin != 0 && isWithin(begin))
        ++begin;
    while (isWithin(end))
        ++end;
    std::string line = m_source.substr(begin, end - begin);
    std::replace_if(
        line.begin(), line.end(),
        [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; }, ' ');
    // A character outside ASCII has several bytes, of which one counts.
    const std::string before = (begin == 0 ? "" : "...") + line.substr(0, position - begin);
    const auto columns = std::count_if(before.begin(), before.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0U) != 0x80;
    });
    throw DataError(fmt::format("{}: {}\n  {}{}{}\n  {:>{}}", m_option, why, before,
                                line.substr(position - begin), end == m_source.size() ? "" : "...",
                                '^', columns + 1));
}

/// Reads a text from left to right.
class ExpressionParser
{
public:
    explicit ExpressionParser(Expression& into) : m_result(into), m_text(into.m_source) {}

    void parse()
    {
        readOr();
        skipBlanks();
        if (m_at != m_text.size())
            fail("expected and, or, or the end here");
    }

private:
    using Kind = Expression::Node::Kind;

    size_t readOr();
    size_t readAnd();
    size_t readTest();
    size_t readTerm(bool isHas);
    size_t readAny();
    std::vector<ExpressionWord> readPath();
    Comparison readComparison();
    void readValue(ExpressionTerm& term);

    size_t add(Kind kind, size_t left, size_t right = 0)
    {
        m_result.m_nodes.push_back({kind, left, right});
        return m_result.m_nodes.size() - 1;
    }
    [[noreturn]] void fail(const std::string& why) const { m_result.fail(m_at, why); }

    void skipBlanks()
    {
        while (m_at < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_at])))
            ++m_at;
    }
    bool skip(std::string_view symbol);
    bool skipWord(std::string_view word);
    std::string_view peekName() const;

    // What bounds the recursion, here and in the evaluation.
    static constexpr int deepest = 200;
    static constexpr size_t mostTerms = 1000;

    Expression& m_result;
    std::string_view m_text;
    size_t m_at = 0;
    int m_depth = 0;
};

bool ExpressionParser::skip(std::string_view symbol)
{
    skipBlanks();
    if (m_text.substr(m_at, symbol.size()) != symbol)
        return false;
    m_at += symbol.size();
    return true;
}

std::string_view ExpressionParser::peekName() const
{
    size_t end = m_at;
    while (end < m_text.size() && (isLetter(m_text[end]) || (end != m_at && isDigit(m_text[end]))))
        ++end;
    return m_text.substr(m_at, end - m_at);
}

bool ExpressionParser::skipWord(std::string_view word)
{
    skipBlanks();
    if (peekName() != word)
        return false;
    m_at += word.size();
    return true;
}

size_t ExpressionParser::readOr()
{
    size_t left = readAnd();
    while (skipWord("or"))
        left = add(Kind::Or, left, readAnd());
    return left;
}

size_t ExpressionParser::readAnd()
{
    size_t left = readTest();
    while (skipWord("and"))
        left = add(Kind::And, left, readTest());
    return left;
}

size_t ExpressionParser::readTest()
{
    if (++m_depth > deepest)
        fail("is nested too deeply");
    size_t node = 0;
    if (skipWord("not")) {
        node = add(Kind::Not, readTest());
    } else if (skip("(")) {
        node = readOr();
        if (!skip(")"))
            fail("expected a closing parenthesis here");
    } else if (skipWord("any")) {
        node = readAny();
    } else {
        node = readTerm(skipWord("has"));
    }
    --m_depth;
    return node;
}

size_t ExpressionParser::readAny()
{
    if (!skip("("))
        fail("any is written any(Field: condition)");
    const size_t index = m_result.m_allScopes.size();
    m_result.m_allScopes.push_back({readPath(), m_result.m_allTerms.size(), 0, index + 1, 0});
    if (!skip(":"))
        fail("expected a colon here, then a condition on the same element");
    const size_t node = readOr();
    if (!skip(")"))
        fail("expected a closing parenthesis here");
    ExpressionScope& scope = m_result.m_allScopes[index];
    scope.endTerm = m_result.m_allTerms.size();
    scope.endScope = m_result.m_allScopes.size();
    return add(Kind::Any, node, index);
}

size_t ExpressionParser::readTerm(bool isHas)
{
    if (m_result.m_allTerms.size() == mostTerms)
        fail("too many comparisons");
    ExpressionTerm term = {readPath(), Comparison::Has, {}, false, {}};
    if (!isHas) {
        term.comparison = readComparison();
        readValue(term);
    }
    m_result.m_allTerms.push_back(std::move(term));
    return add(Kind::Term, m_result.m_allTerms.size() - 1);
}

std::vector<ExpressionWord> ExpressionParser::readPath()
{
    std::vector<ExpressionWord> path;
    skipBlanks();
    for (;;) {
        const std::string_view name = peekName();
        if (name.empty())
            fail("expected the name of a field here");
        path.push_back({std::string(name), m_at});
        m_at += name.size();
        if (m_at == m_text.size() || m_text[m_at] != '.')
            return path;
        ++m_at;
    }
}

Comparison ExpressionParser::readComparison()
{
    static constexpr std::pair<std::string_view, Comparison> symbols[] = {
        {"==", Comparison::Equal},          {"!=", Comparison::NotEqual},
        {"<=", Comparison::LessOrEqual},    {"<", Comparison::Less},
        {">=", Comparison::GreaterOrEqual}, {">", Comparison::Greater},
    };
    for (const auto& [symbol, comparison] : symbols) {
        if (skip(symbol))
            return comparison;
    }
    if (skipWord("like"))
        return Comparison::Like;
    if (m_text.substr(m_at, 1) == "=")
        fail("equality is written ==, the others are != < <= > >= like");
    fail("expected a comparison here: == != < <= > >= like");
}

void ExpressionParser::readValue(ExpressionTerm& term)
{
    skipBlanks();
    term.value.position = m_at;
    if (m_at < m_text.size() && (m_text[m_at] == '\'' || m_text[m_at] == '"')) {
        const size_t end = m_text.find(m_text[m_at], m_at + 1);
        if (end == std::string_view::npos)
            fail("this quote is not closed");
        term.isName = true;
        term.value.text = m_text.substr(m_at + 1, end - m_at - 1);
        m_at = end + 1;
        return;
    }
    if (term.comparison == Comparison::Like)
        fail("a pattern in quotes is expected here, such as 'G*'");
    size_t end = m_at;
    while (end < m_text.size() &&
           (isLetter(m_text[end]) || isDigit(m_text[end]) || m_text[end] == '.' ||
            ((m_text[end] == '-' || m_text[end] == '+') &&
             (end == m_at || m_text[end - 1] == 'e' || m_text[end - 1] == 'E'))))
        ++end;
    term.value.text = m_text.substr(m_at, end - m_at);
    const std::optional<Number> number = readNumber(term.value.text);
    if (!number) {
        fail(end != m_at && isLetter(m_text[m_at])
                 ? "names and texts need quotes"
                 : "a number, or a name in quotes, is expected here");
    }
    term.number = *number;
    m_at = end;
}

Expression::Expression(std::string text, const char* option)
    : m_source(std::move(text)), m_option(option)
{
    ExpressionParser(*this).parse();
}

} // namespace tqx
