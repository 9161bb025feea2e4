#include "korcg_crc_tables.h"

namespace korcg
{

namespace
{

constexpr CrcTables makeTables()
{
    CrcTables tables{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned crc = byte << 8;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc << 1 ^ (crc >> 15 & 1) * crcPolynomial) & 0xffff;
        }
        tables[0][byte] = static_cast<uint16_t>(crc);
    }
    for (size_t row = 1; row < tables.size(); ++row) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            const unsigned previous = tables[row - 1][byte];
            tables[row][byte] =
                static_cast<uint16_t>((previous << 8 & 0xffff) ^ tables[0][previous >> 8]);
        }
    }
    return tables;
}

} // namespace

constexpr CrcTables crcTables = makeTables();

static_assert(crcTables[0][1] == 0x1021 && crcTables[0][255] == 0x1ef0);

} // namespace korcg
