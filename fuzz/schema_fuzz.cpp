// Arbitrary bytes as a description that is read at run time, a zero, and a block of one of its
// types: whatever the text, it is refused with a line or makes layouts; whatever the block, it is
// refused with a code that has a name or comes back as it was.

#include "tqx/log/DataError.h"
#include "tqx/log/inspect/Inspection.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/write/ValueJson.h"

#include "TQX_LayoutFunctions.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

using namespace tqx;
using namespace Kor::MessageApi;

namespace
{

Schema schemaOf(const std::string& text)
{
    try {
        return Schema::parse({{"fuzz.yaml", text}});
    } catch (const DataError& error) {
        if (std::strncmp(error.what(), "fuzz.yaml", 9) != 0)
            std::abort();
        return Schema();
    }
}

void decode(const Schema& schema, const TQX_TypeLayout& type, std::vector<uint8_t> bytes)
{
    constexpr size_t header = 14;
    bytes.insert(bytes.begin(), header, 0);
    const unsigned id = type.blockNumber | (bytes.back() & 7U) << 13U;
    bytes[4] = static_cast<uint8_t>(id);
    bytes[5] = static_cast<uint8_t>(id >> 8U);
    const Block block = {bytes.data(), static_cast<uint16_t>(bytes.size()), 0};
    RecordDecoder decoder(schema);
    const int32_t bits = decoder.decode(block);
    if (bits < 0 && std::strcmp(schema.getErrorName(bits), "???") == 0)
        std::abort();
    inspect(block, schema);
    if (bits <= 0)
        return;
    const FieldFilter everything({}, schema);
    Buffer line;
    ValueJson(everything).write(line, decoder.getDecoded());
    // What the fields cover comes back, but for the length and the checksum.
    std::vector<uint8_t> again(std::numeric_limits<uint16_t>::max());
    if (!decoder.getDecoded().isCovered())
        return;
    const int32_t written = TQX_reencodeAs(type, again.data(), static_cast<uint16_t>(again.size()),
                                           decoder.getRecord());
    if (written != bits || !std::equal(bytes.begin() + 8, bytes.end(), again.begin() + 8))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t mostBytes = 4096;
    const uint8_t* zero = std::find(data, data + size, uint8_t{0});
    const Schema schema = schemaOf(std::string(data, zero));
    if (!schema.hasAddedTypes())
        return 0;
    const auto left = static_cast<size_t>(data + size - zero);
    const std::vector<uint8_t> bytes(zero, zero + std::min(left, mostBytes));
    schema.forEachType([&](const TQX_TypeLayout& type) {
        if (type.described && type.blockNumber != 0)
            decode(schema, type, bytes);
    });
    return 0;
}
