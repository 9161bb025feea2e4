// JSON Lines made into blocks; and what the blocks are dumped to, made into blocks again.

#include "LineEncoder.h"
#include "LineError.h"
#include "RawJson.h"
#include "RecordDecoder.h"

#include <cstdlib>
#include <string>

namespace
{

std::vector<uint8_t> encoded(const std::string& line)
{
    static tool::LineEncoder encoder;
    try {
        return encoder.encode(line);
    } catch (const tool::LineError&) {
        return {};
    }
}

// A block that fields make comes back byte for byte; bytes that are given may be anything.
void checkBlock(const std::vector<uint8_t>& bytes, bool mayBeAnything)
{
    static const tool::FieldFilter everything;
    static tool::RawJson json(everything);
    const tool::Block block = {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
    tool::RecordDecoder decoder;
    if (decoder.decode(block) <= 0) {
        if (!mayBeAnything)
            std::abort();
        return;
    }
    tool::Buffer line;
    json.write(line, decoder.getDecoded());
    if (encoded(std::string(line.view())) != bytes)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string line(reinterpret_cast<const char*>(data), size);
    const std::vector<uint8_t> bytes = encoded(line);
    constexpr size_t shortest = 8;
    constexpr size_t longest = 65535;
    if (bytes.size() >= shortest && bytes.size() <= longest)
        checkBlock(bytes, line.find("bytes") != std::string::npos ||
                              line.find("\\u") != std::string::npos);
    return 0;
}
