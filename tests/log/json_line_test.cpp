#include "tqx/log/read/JsonLine.h"
#include "tqx/log/read/LineError.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

namespace
{

using nlohmann::json;
using tqx::JsonValue;

json documentOf(const JsonValue& value)
{
    switch (value.kind) {
    case JsonValue::Kind::Null:
        return nullptr;
    case JsonValue::Kind::False:
        return false;
    case JsonValue::Kind::True:
        return true;
    case JsonValue::Kind::Number:
        return json::parse(value.text());
    case JsonValue::Kind::String:
        return value.text();
    case JsonValue::Kind::Array:
    case JsonValue::Kind::Object:
        break;
    }
    json document = value.kind == JsonValue::Kind::Array ? json::array() : json::object();
    size_t count = 0;
    for (const JsonValue& inner : value) {
        if (document.is_array()) {
            document.push_back(documentOf(inner));
        } else {
            document[std::string(inner.name())] = documentOf(inner);
        }
        ++count;
    }
    EXPECT_EQ(value.size(), count);
    return document;
}

/// What a line holds, or why it is none, by the parser under test.
std::string described(const std::string& line)
{
    static tqx::JsonLine parser;
    try {
        return documentOf(parser.parse(line)).dump();
    } catch (const tqx::LineError& error) {
        return error.what();
    }
}

/// The same by another parser.
std::string expected(const std::string& line)
{
    if (const size_t null = line.find('\0'); null != std::string::npos)
        return "invalid JSON at column " + std::to_string(null + 1) + ": a null character";
    try {
        return json::parse(line).dump();
    } catch (const json::parse_error& error) {
        return "invalid JSON at column " + std::to_string(error.byte);
    } catch (const json::out_of_range&) {
        return "a number is too large";
    }
}

const char* const texts[] = {
    "null",
    " true ",
    "false",
    "nul",
    "0",
    "-0",
    "-0.0",
    "01",
    "-",
    "+1",
    "1.",
    ".5",
    "1e5",
    "1E+5",
    "1e",
    "18446744073709551615",
    "18446744073709551616",
    "-9223372036854775809",
    "1e308",
    "1e309",
    "-1e999",
    "1e-999",
    "[1e400]",
    "[0e400]",
    "[0.0e-999,-0]",
    "0.00000000000000000000000000000000000000000000000001e355",
    "0.1000000000000000055511151231257827021181583404541015625",
    "\"\"",
    "\"a\\n\\\"\\\\\\/\\b\\f\\r\\t\"",
    "\"\\u00e9\\u0000\\u20ac\"",
    "\"\\ud83d\\ude00\"",
    "\"\\ud83d\"",
    "\"\\ude00\"",
    "\"\\ud83d\\u0041\"",
    "\"\\x\"",
    "\"\\u12g4\"",
    "\"a\tb\"",
    "\"\x7f\"",
    "\"caf\xc3\xa9\"",
    "\"\xc3\"",
    "\"\xc0\xaf\"",
    "\"\xed\xa0\x80\"",
    "\"\xf4\x90\x80\x80\"",
    "\"\xf0\x9f\x98\x80\"",
    "\xff",
    "\xef\xbb\xbf{\"a\":1}",
    "\xef\xbb\xbf\xef\xbb\xbf{}",
    "{}",
    "[]",
    "[[],{},[[]]]",
    "[1,]",
    "[,1]",
    "[1 2]",
    "[1]]",
    "{\"a\":1,\"b\":[1,-2,3.5e-7],\"c\":{\"d\":null,\"\":true}}",
    "{\"a\":1,\"a\":{\"b\":2}}",
    "{\"a\"}",
    "{\"a\":}",
    "{\"a\":1,}",
    "{a:1}",
    "{'a':1}",
    "{\"a\":1} x",
    "{\"a\":1",
    "\"open",
    "// comment",
    "[1, // comment\n2]",
    "NaN",
    "",
    "  ",
};

} // namespace

TEST(JsonLine, ReadsWhatAnotherParserReads)
{
    for (const char* text : texts)
        EXPECT_EQ(described(text), expected(text)) << text;
    const std::string open(100, '[');
    const std::string deep = open + "{\"a\":[0,-0,1.50,\"b\"]}" + std::string(100, ']');
    EXPECT_EQ(described(deep), expected(deep));
    EXPECT_EQ(described(open), expected(open));
}

TEST(JsonLine, ReadsChangedLinesAsAnotherParserDoes)
{
    std::mt19937 random(3);
    const auto below = [&random](size_t limit) { return random() % limit; };
    size_t accepted = 0;
    for (int run = 0; run < 20000; ++run) {
        std::string line = texts[below(std::size(texts))];
        for (size_t change = below(4); change != 0; --change) {
            const size_t at = below(line.size() + 1);
            const std::string piece = texts[below(std::size(texts))];
            if (below(2) == 0) {
                line.insert(at, piece.substr(below(piece.size() + 1), 1 + below(12)));
            } else {
                line.erase(at, below(4));
            }
            if (below(8) == 0)
                line = "[" + line + ",\"" + std::string(below(40), 'x') + "\"]";
        }
        ASSERT_EQ(described(line), expected(line)) << line;
        accepted += json::accept(line) ? 1U : 0U;
    }
    EXPECT_GT(accepted, 2000U);
}

TEST(JsonLine, LimitsWhatALongLineHolds)
{
    const std::string pieces(600000, ' ');
    std::string few = "[" + pieces + pieces + "1]";
    EXPECT_EQ(described(few), "[1]");
    std::string many = "[0" + pieces;
    for (int i = 0; i < 1000000; ++i)
        many += ",0";
    EXPECT_EQ(described(many + "]"), "more than 1000000 values");
    EXPECT_EQ(described(many.substr(0, 1000000) + "!"), "invalid JSON at column 1000001");
}
