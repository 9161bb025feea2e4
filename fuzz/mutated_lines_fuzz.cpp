// Encodes modified JSON Lines of dump: a line is refused with a short message, or gives a block
// that comes back byte for byte.

#include "FuzzInput.h"
#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/read/LineError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/write/RawJson.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <iterator>

namespace
{

using nlohmann::json;

const char* const values[] = {"null",
                              "true",
                              "[]",
                              "{}",
                              "[[]]",
                              "-0",
                              "-1",
                              "0",
                              "255",
                              "256",
                              "65535",
                              "-0.0",
                              "1e999",
                              "-1e-999",
                              "4294967296",
                              "18446744073709551615",
                              "18446744073709551616",
                              "-9223372036854775809",
                              "0.5",
                              "1e300",
                              "\"NaN\"",
                              "\"Infinity\"",
                              "\"\"",
                              "\"x\"",
                              "\"\\u0000x\"",
                              "\"\\u00e9\"",
                              "\"\\u20ac\"",
                              "\"\\u001b[2J\"",
                              "[1,2,3]",
                              "[null]",
                              "[{}]",
                              "{\"x\":1}"};

std::string rawLine(const std::vector<uint8_t>& bytes)
{
    static const tqx::FieldFilter everything;
    static tqx::RawJson writer(everything);
    tqx::RecordDecoder decoder;
    tqx::Buffer line;
    const tqx::Block block = {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
    if (decoder.decode(block) > 0) {
        writer.write(line, decoder.getDecoded());
    } else {
        writer.writeBytes(line, block);
    }
    return std::string(line.view());
}

/// Replaces a value anywhere in the tree.
void replaceValue(json& value, FuzzInput& input)
{
    json* place = &value;
    for (unsigned depth = 0; depth < 6 && place->is_structured() && !place->empty(); ++depth) {
        if (depth > 1 && input.next(1) % 4 == 0)
            break;
        auto member = place->begin();
        std::advance(member, static_cast<std::ptrdiff_t>(input.below(place->size())));
        place = &*member;
    }
    *place = json::parse(values[input.below(std::size(values))], nullptr, false);
}

/// Changes the characters of the line.
void changeText(std::string& line, FuzzInput& input, unsigned operation)
{
    if (line.empty())
        return;
    const size_t at = input.below(line.size());
    const size_t length = input.below(40);
    if (operation == 0) {
        line[at] = static_cast<char>(input.next(1));
    } else if (operation == 1) {
        line.erase(at, length);
    } else if (operation == 2) {
        line.insert(at, line.substr(input.below(line.size()), length));
    } else {
        line.insert(at, values[input.below(std::size(values))]);
    }
}

std::string mutated(std::string line, FuzzInput& input)
{
    constexpr unsigned most = 16;
    for (unsigned i = 0; i < most && !input.isEmpty(); ++i) {
        const auto operation = static_cast<unsigned>(input.next(1) % 8);
        if (operation < 4) {
            changeText(line, input, operation);
            continue;
        }
        json value = json::parse(line, nullptr, false);
        if (value.is_discarded())
            continue;
        replaceValue(value, input);
        line = value.dump(-1, ' ', false, json::error_handler_t::replace);
    }
    return line;
}

std::vector<uint8_t> encoded(const std::string& line)
{
    constexpr size_t longestMessage = 1500;
    static tqx::LineEncoder encoder;
    try {
        return encoder.encode(line);
    } catch (const tqx::LineError& error) {
        const std::string message = error.what();
        if (message.empty() || message.size() > longestMessage)
            std::abort();
        return {};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzInput input(data, size);
    const std::vector<uint8_t> block = fuzzBlock(input);
    const std::string original = rawLine(block);
    if (encoded(original) != block)
        std::abort();
    const std::string line = mutated(original, input);
    const std::vector<uint8_t> bytes = encoded(line);
    // Given bytes may be anything.
    const json read = json::parse(line, nullptr, false);
    if (bytes.empty() || read.contains("bytes"))
        return 0;
    if (encoded(rawLine(bytes)) != bytes)
        std::abort();
    return 0;
}
