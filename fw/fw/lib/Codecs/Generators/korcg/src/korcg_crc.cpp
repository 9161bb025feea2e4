#include "korcg_crc.h"

#include "korcg_crc_methods.h"
#include "korcg_crc_tables.h"
#include "korcg_load.h"

#include <atomic>

namespace korcg
{

namespace
{

using CrcFunction = uint16_t (*)(const uint8_t*, size_t, uint16_t);
using CombineFunction = uint16_t (*)(uint16_t, uint16_t, size_t);

struct CrcMethods {
    korcg_CrcMethod_s list[5];
    size_t count = 0;

    CrcMethods()
    {
        add("byte table", crcByteTable, combineByShifts);
        add("slicing-by-16", crcSlicing, combineByShifts);
#if KORCG_HAVE_CLMUL
        if (crcClmulRuns()) {
            add("clmul", crcClmul, combineByClmul);
        }
#endif
#if KORCG_HAVE_LONG_VECTORS
        if (crcAvx2Runs()) {
            add("clmul avx2", crcAvx2, combineByClmul);
        }
        if (crcWideClmulRuns()) {
            add("wide clmul", crcWideClmul, combineByClmul);
        }
#endif
    }

    void add(const char* name, CrcFunction run, CombineFunction combine)
    {
        list[count++] = {name, run, combine};
    }

    const korcg_CrcMethod_s& fastest() const
    {
        return list[count - 1];
    }
};

const CrcMethods& crcMethods()
{
    static const CrcMethods methods;
    return methods;
}

uint16_t chooseAndRun(const uint8_t* data, size_t size, uint16_t start);
uint16_t chooseAndCombine(uint16_t crcA, uint16_t crcB, size_t lengthB);

// Constant-initialised, so that static initialisers of other libraries may compute checksums.
std::atomic<CrcFunction> g_fastest{chooseAndRun};
std::atomic<CombineFunction> g_fastestCombine{chooseAndCombine};

uint16_t chooseAndRun(const uint8_t* data, size_t size, uint16_t start)
{
    const CrcFunction fastest = crcMethods().fastest().run;
    g_fastest.store(fastest, std::memory_order_relaxed);
    return fastest(data, size, start);
}

uint16_t chooseAndCombine(uint16_t crcA, uint16_t crcB, size_t lengthB)
{
    const CombineFunction fastest = crcMethods().fastest().combine;
    g_fastestCombine.store(fastest, std::memory_order_relaxed);
    return fastest(crcA, crcB, lengthB);
}

/// Table entry of byte `index` of a little-endian word at the given row.
uint16_t lookUp(size_t row, uint64_t word, unsigned index)
{
    return crcTables[row][word >> 8 * index & 0xff];
}

/// Fewer than 16 bytes: their lookups do not wait for each other either.
uint16_t crcFewBytes(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < 2) {
        return crcByteTable(data, size, start);
    }
    const auto* row = &crcTables[size - 1];
    unsigned crc = (*row)[data[0] ^ start >> 8];
    crc ^= (*--row)[data[1] ^ (start & 0xff)];
    for (const uint8_t* byte = data + 2; byte != data + size; ++byte) {
        crc ^= (*--row)[*byte];
    }
    return static_cast<uint16_t>(crc);
}

} // namespace

uint16_t crcByteTable(const uint8_t* data, size_t size, uint16_t start)
{
    unsigned crc = start;
    for (size_t i = 0; i < size; ++i) {
        crc = (crc << 8 & 0xffff) ^ crcTables[0][crc >> 8 ^ data[i]];
    }
    return static_cast<uint16_t>(crc);
}

uint16_t crcSlicing(const uint8_t* data, size_t size, uint16_t start)
{
    unsigned crc = start;
    for (; size >= 16; data += 16, size -= 16) {
        const uint64_t head = korcg_load_u64(data);
        const uint64_t tail = korcg_load_u64(data + 8);
        // Only the first two lookups wait for the checksum so far.
        const unsigned rest = lookUp(13, head, 2) ^ lookUp(12, head, 3) ^ lookUp(11, head, 4) ^
                              lookUp(10, head, 5) ^ lookUp(9, head, 6) ^ lookUp(8, head, 7) ^
                              lookUp(7, tail, 0) ^ lookUp(6, tail, 1) ^ lookUp(5, tail, 2) ^
                              lookUp(4, tail, 3) ^ lookUp(3, tail, 4) ^ lookUp(2, tail, 5) ^
                              lookUp(1, tail, 6) ^ lookUp(0, tail, 7);
        crc = rest ^ crcTables[15][data[0] ^ crc >> 8] ^ crcTables[14][data[1] ^ (crc & 0xff)];
    }
    return crcFewBytes(data, size, static_cast<uint16_t>(crc));
}

} // namespace korcg

uint16_t korcg_crc16_bytes(const uint8_t* data, size_t size, uint16_t start)
{
    if (size < 16) {
        return korcg::crcFewBytes(data, size, start);
    }
    return korcg::g_fastest.load(std::memory_order_relaxed)(data, size, start);
}

uint16_t korcg_crc16_combine(uint16_t crcA, uint16_t crcB, size_t lengthB)
{
    return korcg::g_fastestCombine.load(std::memory_order_relaxed)(crcA, crcB, lengthB);
}

bool korcg_crc16(const uint8_t* buffer, uint16_t data_size, uint32_t startBit, uint32_t endBit,
                 uint8_t width, uint16_t* crc)
{
    *crc = 0;
    if (width != 16 || startBit >= endBit || endBit > uint32_t{data_size} * 8 ||
        startBit % 8 != 0 || endBit % 8 != 0) {
        return false;
    }
    *crc = korcg_crc16_bytes(buffer + startBit / 8, (endBit - startBit) / 8);
    return true;
}

size_t korcg_crc16_methods(const korcg_CrcMethod_s** methods)
{
    const korcg::CrcMethods& all = korcg::crcMethods();
    *methods = all.list;
    return all.count;
}
