#include "tqx/log/mixed/Neighbour.h"

namespace tqx
{

std::string_view Neighbour::getAddress() const
{
    if (kind != NeighbourKind::Nmea)
        return {};
    const std::string_view sentence(reinterpret_cast<const char*>(data), size);
    return sentence.substr(1, sentence.find_first_of(",*") - 1);
}

uint16_t Neighbour::getNumber() const
{
    constexpr size_t numberAt = 3;
    constexpr size_t checksumSize = 3;
    if (kind != NeighbourKind::Rtcm3 || size < numberAt + 2 + checksumSize)
        return 0;
    return static_cast<uint16_t>(data[numberAt] << 4U | data[numberAt + 1] >> 4U);
}

} // namespace tqx
