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
        return at < source.size() && (static_cast<unsigned char>(source[at]) & 0xc0U) == 0x80;
    };
    size_t begin = position - std::min(position, most);
    size_t end = std::min(source.size(), position + most);
    // Not within a character.
    while (begin != 0 && isWithin(begin))
        ++begin;
    while (isWithin(end))
        ++end;
    std::string line = source.substr(begin, end - begin);
    std::replace_if(
        line.begin(), line.end(),
        [](char c) { return std::iscntrl(static_cast<unsigned char>(c)) != 0; }, ' ');
    // A character outside ASCII has several bytes, of which one counts.
    const std::string before = (begin == 0 ? "" : "...") + line.substr(0, position - begin);
    const auto columns = std::count_if(before.begin(), before.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0U) != 0x80;
    });
    throw DataError(fmt::format("{}: {}\n  {}{}{}\n  {:>{}}", m_option, why, before,
                                line.substr(position - begin), end == source.size() ? "" : "...",
                                '^', columns + 1));
}

/// Reads a text from left to right.
class ExpressionParser
{
public:
    explicit ExpressionParser(Expression& into) : result(into), text(into.source) {}

    void parse()
    {
        readOr();
        skipBlanks();
        if (at != text.size())
            fail("and, or, or the end is expected here");
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
        result.nodes.push_back({kind, left, right});
        return result.nodes.size() - 1;
    }
    [[noreturn]] void fail(const std::string& why) const { result.fail(at, why); }

    void skipBlanks()
    {
        while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])))
            ++at;
    }
    bool skip(std::string_view symbol);
    bool skipWord(std::string_view word);
    std::string_view peekName() const;

    // What bounds the recursion, here and in the evaluation.
    static constexpr int deepest = 200;
    static constexpr size_t mostTerms = 1000;

    Expression& result;
    std::string_view text;
    size_t at = 0;
    int depth = 0;
};

bool ExpressionParser::skip(std::string_view symbol)
{
    skipBlanks();
    if (text.substr(at, symbol.size()) != symbol)
        return false;
    at += symbol.size();
    return true;
}

std::string_view ExpressionParser::peekName() const
{
    size_t end = at;
    while (end < text.size() && (isLetter(text[end]) || (end != at && isDigit(text[end]))))
        ++end;
    return text.substr(at, end - at);
}

bool ExpressionParser::skipWord(std::string_view word)
{
    skipBlanks();
    if (peekName() != word)
        return false;
    at += word.size();
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
    if (++depth > deepest)
        fail("is nested too deeply");
    size_t node = 0;
    if (skipWord("not")) {
        node = add(Kind::Not, readTest());
    } else if (skip("(")) {
        node = readOr();
        if (!skip(")"))
            fail("a closing parenthesis is expected here");
    } else if (skipWord("any")) {
        node = readAny();
    } else {
        node = readTerm(skipWord("has"));
    }
    --depth;
    return node;
}

size_t ExpressionParser::readAny()
{
    if (!skip("("))
        fail("any is written any(Field: condition)");
    const size_t index = result.allScopes.size();
    result.allScopes.push_back({readPath(), result.allTerms.size(), 0, index + 1, 0});
    if (!skip(":"))
        fail("a colon is expected here, then what is asked of the same element");
    const size_t node = readOr();
    if (!skip(")"))
        fail("a closing parenthesis is expected here");
    ExpressionScope& scope = result.allScopes[index];
    scope.endTerm = result.allTerms.size();
    scope.endScope = result.allScopes.size();
    return add(Kind::Any, node, index);
}

size_t ExpressionParser::readTerm(bool isHas)
{
    if (result.allTerms.size() == mostTerms)
        fail("too many comparisons");
    ExpressionTerm term = {readPath(), Comparison::Has, {}, false, {}};
    if (!isHas) {
        term.comparison = readComparison();
        readValue(term);
    }
    result.allTerms.push_back(std::move(term));
    return add(Kind::Term, result.allTerms.size() - 1);
}

std::vector<ExpressionWord> ExpressionParser::readPath()
{
    std::vector<ExpressionWord> path;
    skipBlanks();
    do {
        const std::string_view name = peekName();
        if (name.empty())
            fail("the name of a field is expected here");
        path.push_back({std::string(name), at});
        at += name.size();
    } while (at < text.size() && text[at] == '.' && ++at != 0);
    return path;
}

Comparison ExpressionParser::readComparison()
{
    static constexpr std::pair<std::string_view, Comparison> symbols[] = {
        {"==", Comparison::Equal},          {"!=", Comparison::NotEqual},
        {"<=", Comparison::LessOrEqual},    {"<", Comparison::Less},
        {">=", Comparison::GreaterOrEqual}, {">", Comparison::Greater},
    };
    for (const auto& [symbol, comparison] : symbols)
        if (skip(symbol))
            return comparison;
    if (skipWord("like"))
        return Comparison::Like;
    if (text.substr(at, 1) == "=")
        fail("equality is written ==, the others are != < <= > >= like");
    fail("a comparison is expected here: == != < <= > >= like");
}

void ExpressionParser::readValue(ExpressionTerm& term)
{
    skipBlanks();
    term.value.position = at;
    if (at < text.size() && (text[at] == '\'' || text[at] == '"')) {
        const size_t end = text.find(text[at], at + 1);
        if (end == std::string_view::npos)
            fail("this quote is not closed");
        term.isName = true;
        term.value.text = text.substr(at + 1, end - at - 1);
        at = end + 1;
        return;
    }
    if (term.comparison == Comparison::Like)
        fail("a pattern in quotes is expected here, such as 'G*'");
    size_t end = at;
    while (end < text.size() && (isLetter(text[end]) || isDigit(text[end]) || text[end] == '.' ||
                                 ((text[end] == '-' || text[end] == '+') &&
                                  (end == at || text[end - 1] == 'e' || text[end - 1] == 'E'))))
        ++end;
    term.value.text = text.substr(at, end - at);
    const std::optional<Number> number = readNumber(term.value.text);
    if (!number)
        fail(end != at && isLetter(text[at]) ? "names and texts stand in quotes"
                                             : "a number, or a name in quotes, is expected here");
    term.number = *number;
    at = end;
}

Expression::Expression(std::string text, const char* option)
    : source(std::move(text)), m_option(option)
{
    ExpressionParser(*this).parse();
}

} // namespace tqx
