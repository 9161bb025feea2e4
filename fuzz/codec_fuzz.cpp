// Decodes arbitrary bytes, and encodes the result, unchanged and with appended elements.

#include "ExactDecoder.h"
#include "RecordCompare.h"
#include "RecordFiller.h"
#include "RecordGuard.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace Kor::MessageApi;

constexpr uint16_t largestBlock = 65535;

[[noreturn]] void fail(const TQX_TypeLayout& type, const std::string& what)
{
    std::fprintf(stderr, "%s: %s\n", type.name, what.c_str());
    std::abort();
}

bool sameTime(const TQX_Context_s& one, const TQX_Context_s& other)
{
    return one.weekCounter == other.weekCounter && one.lastTOW == other.lastTOW;
}

// The straight-line decoder and the exact one must not differ.
void checkAgainstExact(const TQX_TypeLayout& type, const uint8_t* data, uint16_t size,
                       AnyRecord& decoded, int32_t result, TQX_Context_s before,
                       const TQX_Context_s& after)
{
    AnyRecord exact(0x5a);
    uint32_t offset = 0;
    if (decodeExactly(type, &before, data, size, &offset, nullptr, 0, exact.get()) != result)
        fail(type, "the decoders' results differ");
    if (!sameTime(before, after))
        fail(type, "the decoders' contexts differ");
    const std::string difference =
        firstDifference(type, decoded.get(), exact.get(), Compared::Reachable);
    if (!difference.empty())
        fail(type, difference);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t length)
{
    static uint8_t out[largestBlock];
    const auto size = static_cast<uint16_t>(std::min<size_t>(length, largestBlock));
    TQX_Context_s context;
    TQX_init_context(&context);
    context.lastTOW = 604790000;
    const TQX_Context_s before = context;
    AnyRecord record;
    const int32_t result = record.decode(data, size, &context);
    const TQX_TypeLayout* type = TQX_layout(record.as<KorcgHeader_s>().korcg_type);
    if (type == nullptr)
        return 0;
    checkAgainstExact(*type, data, size, record, result, before, context);
    if (result < 0)
        return 0;
    const int32_t again = TQX_reencode(out, largestBlock, record.get());
    if (again > 0) {
        AnyRecord second;
        if (second.decode(out, static_cast<uint16_t>(again / 8)) != again)
            fail(*type, "written back, the block has another size");
        const std::string difference =
            firstDifference(*type, second.get(), record.get(), Compared::WireFields);
        if (!difference.empty())
            fail(*type, difference);
    }
    type->encode(out, largestBlock, record.get());
    appendToAll(*type, record.get(), 2);
    type->encode(out, largestBlock, record.get());
    return 0;
}
