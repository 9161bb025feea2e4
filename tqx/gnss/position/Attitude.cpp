#include "tqx/gnss/position/Attitude.h"

#include "tqx/gnss/position/PositionFilling.h"

#include "TQX_codec.h"

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t attEuler1 = 5938;
constexpr uint16_t intAttEuler1 = 4070;

template<typename Record>
bool fill(const Record& record, Position& position)
{
    if (record.Error != 0 || record.Mode == 0)
        return false;
    filling::setAttitude(position, record);
    return std::isfinite(position.heading);
}

} // namespace

bool hasAttitude(uint16_t blockNumber)
{
    return blockNumber == attEuler1 || blockNumber == intAttEuler1;
}

bool addAttitude(const void* block, Position& position)
{
    const auto& header = *static_cast<const TQX_MainHeader_s*>(block);
    if (gnssMillis(header.TOW, header.WNc) != position.time)
        return false;
    if (std::isfinite(position.heading))
        return true;
    if (header.BlockNumber == attEuler1)
        return fill(*static_cast<const TQX_AttEuler1_s*>(block), position);
    return header.BlockNumber == intAttEuler1 &&
           fill(*static_cast<const TQX_IntAttEuler1_s*>(block), position);
}

} // namespace tqx
