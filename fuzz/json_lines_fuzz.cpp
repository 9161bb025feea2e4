// Encodes JSON Lines as blocks; dumps the blocks and encodes these lines again.

#include "tqx/log/read/LineEncoder.h"
#include "tqx/log/read/LineError.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/write/RawJson.h"

#include <cstdlib>
#include <string>

namespace
{

std::vector<uint8_t> encoded(const std::string& line)
{
    static tqx::LineEncoder encoder;
    try {
        return encoder.encode(line);
    } catch (const tqx::LineError&) {
        return {};
    }
}

// A block made from fields comes back byte for byte; given bytes may be anything.
void checkBlock(const std::vector<uint8_t>& bytes, bool mayBeAnything)
{
    static const tqx::FieldFilter everything;
    static tqx::RawJson json(everything);
    const tqx::Block block = {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
    if (mayBeAnything && (bytes[0] != '$' || bytes[1] != '@'))
        return; // a block that no stream would return; lines of fields do not restore it
    tqx::RecordDecoder decoder;
    if (decoder.decode(block) <= 0) {
        if (!mayBeAnything)
            std::abort();
        return;
    }
    tqx::Buffer line;
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
    if (bytes.size() >= shortest && bytes.size() <= longest) {
        checkBlock(bytes, line.find("bytes") != std::string::npos ||
                              line.find("\\u") != std::string::npos);
    }
    return 0;
}
