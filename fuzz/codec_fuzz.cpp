// Decoding of arbitrary bytes, and encoding of what came out of it.

#include "ExactDecoder.h"
#include "RecordGuard.h"

#include <cstdlib>
#include <vector>

namespace
{

using namespace Kor::MessageApi;

// The straight-line decoder and the exact one must not differ in result or in count of bits.
void checkAgainstExact(const std::vector<uint8_t>& bytes, const AnyRecord& decoded, int32_t result)
{
    const auto& head = *static_cast<const KorcgHeader_s*>(decoded.get());
    const TQX_TypeLayout* type = TQX_layout(head.korcg_type);
    if (type == nullptr)
        return;
    AnyRecord exact;
    uint32_t offset = 0;
    if (decodeExactly(*type, nullptr, bytes.data(), static_cast<uint16_t>(bytes.size()), &offset,
                      nullptr, 0, exact.get()) != result ||
        (result >= 0 && exact.as<KorcgHeader_s>().korcg_bits != head.korcg_bits))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<uint8_t> bytes(data, data + (size < 65535 ? size : 65535));
    AnyRecord record;
    const int32_t result = record.decode(bytes);
    checkAgainstExact(bytes, record, result);
    if (result < 0)
        return 0;
    std::vector<uint8_t> out(65535);
    const int32_t again = TQX_reencode(out.data(), 65535, record.get());
    if (again > 0) {
        AnyRecord second;
        out.resize(static_cast<size_t>(again) / 8);
        if (second.decode(out) != again)
            std::abort();
    }
    out.resize(65535);
    const auto recordType = record.as<KorcgHeader_s>().korcg_type;
    TQX_layout(recordType)->encode(out.data(), 65535, record.get());
    return 0;
}
