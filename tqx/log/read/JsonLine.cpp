#include "tqx/log/read/JsonLine.h"

#include "tqx/log/read/LineError.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

// Loads that go on to the end of 16 bytes; see the padding below.
#if defined(__SSE2__)
#define RAPIDJSON_SSE2
#elif defined(__ARM_NEON)
#define RAPIDJSON_NEON
#endif
#include <rapidjson/reader.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <limits>
#include <new>
#include <utility>

namespace tqx
{

namespace
{

constexpr size_t mostValues = 1000000;

/// A line that is long enough for its values to take much more memory than its text.
bool isLong(std::string_view line)
{
    constexpr size_t longest = 1 << 20;
    return line.size() > longest;
}

[[noreturn]] void failTooMany()
{
    throw LineError(fmt::format("more than {} values", mostValues));
}

[[noreturn]] void failTooLarge()
{
    throw LineError("a number is too large");
}

/// Memory for the parser, which does not check its allocations.
class Allocator
{
public:
    [[maybe_unused]] static constexpr bool kNeedFree = true;

    static void* Malloc(size_t size) { return size == 0 ? nullptr : checked(std::malloc(size)); }
    static void* Realloc(void* memory, size_t, size_t size)
    {
        if (size != 0)
            return checked(std::realloc(memory, size));
        std::free(memory);
        return nullptr;
    }
    static void Free(void* memory) { std::free(memory); }

private:
    static void* checked(void* memory)
    {
        if (!memory)
            throw std::bad_alloc();
        return memory;
    }
};

using Reader = rapidjson::GenericReader<rapidjson::UTF8<>, rapidjson::UTF8<>, Allocator>;

/// Whether a number is beyond the largest double.
bool isTooLarge(std::string_view number)
{
    constexpr size_t shortest = 300; // of numbers without an exponent
    const size_t exponent = number.find_first_of("eE");
    if (number.size() < shortest &&
        (exponent == std::string_view::npos || number.size() - exponent < sizeof "e99"))
        return false;
    double value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    // Numbers too close to zero are out of range, too; they are taken for zero.
    return error != std::errc() && !nlohmann::json::accept(number);
}

/// Lists the values that the parser finds.
class ValueList
{
public:
    ValueList(std::vector<JsonValue>& values, std::vector<uint32_t>& open, bool isLimited)
        : m_values(values), m_open(open), m_left(isLimited ? mostValues : ~size_t{0})
    {
        values.clear();
        open.clear();
    }

    bool Null() { return add(JsonValue::Kind::Null); }
    bool Bool(bool value) { return add(value ? JsonValue::Kind::True : JsonValue::Kind::False); }
    bool String(const char* text, uint32_t length, bool)
    {
        return add(JsonValue::Kind::String, text, length);
    }
    bool RawNumber(const char* text, uint32_t length, bool)
    {
        if (isTooLarge({text, length}))
            failTooLarge();
        return add(JsonValue::Kind::Number, text, length);
    }
    // The parser calls itself for what is inside.
    bool StartObject() { return !isDeep() && begin(JsonValue::Kind::Object); }
    bool Key(const char* text, uint32_t length, bool)
    {
        m_name = {text, length};
        return count();
    }
    bool EndObject(uint32_t members) { return end(members); }
    bool StartArray() { return !isDeep() && begin(JsonValue::Kind::Array); }
    bool EndArray(uint32_t elements) { return end(elements); }

    // Numbers come as they are written.
    static bool Int(int) { return false; }
    static bool Uint(unsigned) { return false; }
    static bool Int64(int64_t) { return false; }
    static bool Uint64(uint64_t) { return false; }
    static bool Double(double) { return false; }

    bool begin(JsonValue::Kind kind)
    {
        m_open.push_back(static_cast<uint32_t>(m_values.size()));
        return add(kind);
    }

    bool end(uint32_t size)
    {
        JsonValue& value = m_values[m_open.back()];
        value.length = size;
        value.span = static_cast<uint32_t>(m_values.size()) - m_open.back();
        m_open.pop_back();
        return count();
    }

    /// Ends an array or object whose size the parser does not know.
    bool end()
    {
        uint32_t size = 0;
        for (size_t i = m_open.back() + size_t{1}; i < m_values.size(); i += m_values[i].span)
            ++size;
        return end(size);
    }

private:
    bool isDeep() const
    {
        constexpr size_t deepest = 64; // far more than blocks need
        return m_open.size() >= deepest;
    }

    bool count()
    {
        if (m_left-- == 0)
            failTooMany();
        return true;
    }

    bool add(JsonValue::Kind kind, const char* text = nullptr, uint32_t length = 0)
    {
        m_values.push_back(
            {m_name.data(), text, static_cast<uint32_t>(m_name.size()), length, 1, kind});
        m_name = {};
        return count();
    }

    std::vector<JsonValue>& m_values;
    std::vector<uint32_t>& m_open; ///< arrays and objects around the next value
    std::string_view m_name;       ///< of the next value
    size_t m_left;
};

/// Passes on the values of a slower parser, which accepts what the fast one does not, and reports
/// the places of errors like other tools.
class ThoroughParser : public nlohmann::json_sax<nlohmann::json>
{
public:
    /// What `texts` holds is referred to by the values.
    ThoroughParser(ValueList& list, std::deque<std::string>& texts) : m_list(list), m_texts(texts)
    {
    }

    bool null() override { return m_list.Null(); }
    bool boolean(bool value) override { return m_list.Bool(value); }
    bool number_integer(int64_t value) override
    {
        // Without a sign it would be an unsigned one.
        return number(value == 0 ? "-0" : std::to_string(value));
    }
    bool number_unsigned(uint64_t value) override { return number(std::to_string(value)); }
    bool number_float(double, const std::string& text) override { return number(text); }
    bool string(std::string& text) override
    {
        const std::string& kept = keep(std::move(text));
        return m_list.String(kept.data(), static_cast<uint32_t>(kept.size()), false);
    }
    bool key(std::string& text) override
    {
        const std::string& kept = keep(std::move(text));
        return m_list.Key(kept.data(), static_cast<uint32_t>(kept.size()), false);
    }
    bool start_object(size_t) override { return m_list.begin(JsonValue::Kind::Object); }
    bool start_array(size_t) override { return m_list.begin(JsonValue::Kind::Array); }
    bool end_object() override { return m_list.end(); }
    bool end_array() override { return m_list.end(); }
    bool binary(nlohmann::json::binary_t&) override { return false; }
    bool parse_error(size_t position, const std::string&,
                     const nlohmann::json::exception& error) override
    {
        if (dynamic_cast<const nlohmann::json::out_of_range*>(&error))
            failTooLarge();
        throw LineError(fmt::format("invalid JSON at column {}", position));
    }

private:
    const std::string& keep(std::string text)
    {
        m_texts.push_back(std::move(text));
        return m_texts.back();
    }
    bool number(std::string text)
    {
        const std::string& kept = keep(std::move(text));
        return m_list.RawNumber(kept.data(), static_cast<uint32_t>(kept.size()), false);
    }

    ValueList& m_list;
    std::deque<std::string>& m_texts;
};

/// Lone surrogates, which the parser accepts.
bool mayHaveSurrogates(std::string_view line)
{
    for (size_t at = line.find('\\'); at != std::string_view::npos; at = line.find('\\', at + 1)) {
        if (const std::string_view rest = line.substr(at + 1, 2); rest == "ud" || rest == "uD")
            return true;
    }
    return false;
}

std::string_view withoutByteOrderMark(std::string_view line)
{
    constexpr std::string_view mark = "\xef\xbb\xbf";
    return line.substr(0, mark.size()) == mark ? line.substr(mark.size()) : line;
}

bool isAscii(std::string_view line)
{
    constexpr uint64_t highBits = 0x8080808080808080;
    uint64_t all = 0;
    uint64_t word = 0;
    while (line.size() >= sizeof word) {
        std::memcpy(&word, line.data(), sizeof word);
        all |= word;
        line.remove_prefix(sizeof word);
    }
    word = 0;
    std::memcpy(&word, line.data(), line.size());
    return ((all | word) & highBits) == 0;
}

} // namespace

struct JsonLine::Parser {
    Reader reader;
    std::vector<uint32_t> open;
    std::deque<std::string> texts; ///< of the slower parser
};

JsonLine::JsonLine() : m_parser(std::make_unique<Parser>()) {}
JsonLine::~JsonLine() = default;

const JsonValue& JsonLine::parse(std::string_view line)
{
    // The parsers would take it for the end.
    if (const size_t null = line.find('\0'); null != std::string_view::npos)
        throw LineError(fmt::format("invalid JSON at column {}: a null character", null + 1));
    constexpr size_t longest = std::numeric_limits<uint32_t>::max() - 1;
    if (line.size() > longest)
        throw LineError(fmt::format("longer than {} bytes", longest));
    m_parser->texts.clear();
    if (mayHaveSurrogates(line) || !parseFast(line)) {
        ValueList list(m_values, m_parser->open, isLong(line));
        ThoroughParser parser(list, m_parser->texts);
        nlohmann::json::sax_parse(line, &parser);
    }
    return m_values.front();
}

bool JsonLine::parseFast(std::string_view line)
{
    constexpr unsigned inPlace =
        rapidjson::kParseInsituFlag | rapidjson::kParseNumbersAsStringsFlag;
    constexpr unsigned strict = inPlace | rapidjson::kParseValidateEncodingFlag;
    constexpr size_t padding = 16; // what is loaded at once
    m_text.assign(withoutByteOrderMark(line));
    m_text.append(padding, '\0');
    ValueList list(m_values, m_parser->open, isLong(line));
    rapidjson::InsituStringStream stream(m_text.data());
    const auto result = isAscii(line) ? m_parser->reader.Parse<inPlace>(stream, list)
                                      : m_parser->reader.Parse<strict>(stream, list);
    return !result.IsError();
}

} // namespace tqx
