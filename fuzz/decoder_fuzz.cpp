// Each decoder alone, at any offset and with any explicit length, against the exact decoder and the
// reference of the tests.

#include "Ancestors.h"
#include "ExactDecoder.h"
#include "FieldRoles.h"
#include "RecordCompare.h"
#include "RecordGuard.h"
#include "korcg_load.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace Kor::MessageApi;

void check(bool holds, const TQX_TypeLayout& type, const std::string& what)
{
    if (holds)
        return;
    std::fprintf(stderr, "%s: %s\n", type.name, what.c_str());
    std::abort();
}

// The first bytes decide how the decoder is called; the rest is its input.
struct Call {
    const TQX_TypeLayout* type;
    unsigned revision;
    unsigned nestedLength;
    uint32_t offset;
    uint32_t length;
};

constexpr size_t callBytes = 9;

Call callOf(const uint8_t* data)
{
    Call call;
    call.type = allTypes()[korcg_load_u16(data) % allTypes().size()];
    call.revision = data[2] & 7U;
    call.nestedLength = data[3];
    call.offset = data[4];
    call.length = korcg_load_u32(data + 5);
    return call;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < callBytes)
        return 0;
    const Call call = callOf(data);
    const TQX_TypeLayout& type = *call.type;
    const std::vector<uint8_t> bytes(data + callBytes,
                                     data + std::min<size_t>(size, callBytes + 65535));
    const auto length = static_cast<uint16_t>(bytes.size());
    Ancestors ancestors(type, call.revision, call.nestedLength);

    reference::Start start;
    start.offset = call.offset;
    start.length = call.length;
    start.above = type.linksToMain == 0 ? nullptr : &ancestors.surroundings();
    const reference::Outcome expected = reference::decode(type, bytes, start);

    AnyRecord record;
    uint32_t offset = call.offset;
    const int32_t result = decodeAlone(type, nullptr, bytes.data(), length, &offset,
                                       ancestors.father(), call.length, record.get());
    check(result == expected.result && offset == expected.offset, type, "another result");
    check(record.as<KorcgHeader_s>().korcg_bits == expected.block.bits, type,
          "another count of bits");

    AnyRecord exact(0x5a);
    uint32_t exactOffset = call.offset;
    decodeExactly(type, nullptr, bytes.data(), length, &exactOffset, ancestors.father(),
                  call.length, exact.get());
    const std::string difference =
        firstDifference(type, record.get(), exact.get(), Compared::Reachable);
    check(difference.empty(), type, difference);
    return 0;
}
