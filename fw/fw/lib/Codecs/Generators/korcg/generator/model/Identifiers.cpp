#include "model/Identifiers.h"

#include <algorithm>
#include <iterator>

namespace korcg::generator
{

namespace
{

/// C++17 and C++20, ascending.
constexpr std::string_view keywords[] = {"alignas",       "alignof",     "and",
                                         "and_eq",        "asm",         "auto",
                                         "bitand",        "bitor",       "bool",
                                         "break",         "case",        "catch",
                                         "char",          "char16_t",    "char32_t",
                                         "char8_t",       "class",       "co_await",
                                         "co_return",     "co_yield",    "compl",
                                         "concept",       "const",       "const_cast",
                                         "consteval",     "constexpr",   "constinit",
                                         "continue",      "decltype",    "default",
                                         "delete",        "do",          "double",
                                         "dynamic_cast",  "else",        "enum",
                                         "explicit",      "export",      "extern",
                                         "false",         "float",       "for",
                                         "friend",        "goto",        "if",
                                         "inline",        "int",         "long",
                                         "mutable",       "namespace",   "new",
                                         "noexcept",      "not",         "not_eq",
                                         "nullptr",       "operator",    "or",
                                         "or_eq",         "private",     "protected",
                                         "public",        "register",    "reinterpret_cast",
                                         "requires",      "return",      "short",
                                         "signed",        "sizeof",      "static",
                                         "static_assert", "static_cast", "struct",
                                         "switch",        "template",    "this",
                                         "thread_local",  "throw",       "true",
                                         "try",           "typedef",     "typeid",
                                         "typename",      "union",       "unsigned",
                                         "using",         "virtual",     "void",
                                         "volatile",      "wchar_t",     "while",
                                         "xor",           "xor_eq"};

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

bool isKeyword(std::string_view text)
{
    return std::binary_search(std::begin(keywords), std::end(keywords), text);
}

bool isIdentifier(std::string_view text)
{
    return !text.empty() && !isDigit(text.front()) &&
           std::all_of(text.begin(), text.end(),
                       [](char c) { return isLetter(c) || isDigit(c); }) &&
           !isKeyword(text);
}

} // namespace korcg::generator
