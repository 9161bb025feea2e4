#include "tqx/gnss/observation/SatelliteId.h"

#include <array>

namespace tqx
{

namespace
{

/// Identifiers that follow each other, and the number of the first.
struct Range {
    uint8_t from;
    uint8_t to;
    char system;
    uint8_t start;
};

constexpr Range ranges[] = {
    {1, 37, 'G', 1},     {38, 61, 'R', 1},   {63, 69, 'R', 25},   {71, 106, 'E', 1},
    {120, 140, 'S', 20}, {141, 180, 'C', 1}, {181, 190, 'J', 1},  {191, 197, 'I', 1},
    {198, 215, 'S', 41}, {216, 222, 'I', 8}, {223, 245, 'C', 41},
};

constexpr std::array<SatelliteId, 256> makeTable()
{
    std::array<SatelliteId, 256> table = {};
    for (const Range& range : ranges) {
        for (unsigned svid = range.from; svid <= range.to; ++svid) {
            table[svid].system = range.system;
            table[svid].number = static_cast<uint8_t>(range.start + svid - range.from);
        }
    }
    return table;
}

constexpr std::array<SatelliteId, 256> satellites = makeTable();

} // namespace

std::string SatelliteId::text() const
{
    return {system, static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

std::optional<SatelliteId> satelliteOf(uint8_t svid)
{
    const SatelliteId satellite = satellites[svid];
    if (satellite.number == 0)
        return std::nullopt;
    return satellite;
}

uint8_t svidOf(const SatelliteId& satellite)
{
    for (unsigned svid = 1; svid < satellites.size(); ++svid) {
        if (satellites[svid] == satellite)
            return static_cast<uint8_t>(svid);
    }
    return 0;
}

} // namespace tqx
