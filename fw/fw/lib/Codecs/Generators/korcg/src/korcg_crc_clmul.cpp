#define KORCG_TARGET __attribute__((target("pclmul,ssse3")))

#include "korcg_crc_fold.h"

#if KORCG_HAVE_CLMUL

#include "korcg_crc.h"

namespace korcg
{

namespace
{

constexpr size_t leastBytes = 16;

KORCG_TARGET uint16_t fold(const uint8_t* data, size_t size)
{
    __m128i v[8];
    shorten<Lanes>(data, size, v);
    return crcOfLanes(v + 4);
}

} // namespace

bool crcClmulRuns()
{
    return __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("ssse3");
}

uint16_t crcClmul(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < leastBytes) {
        return crcSlicing(data, size, start);
    }
    return start == 0 ? fold(data, size) : korcg_crc16_combine(start, fold(data, size), size);
}

} // namespace korcg

#endif
