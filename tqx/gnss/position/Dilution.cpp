#include "tqx/gnss/position/Dilution.h"

#include "TQX_codec.h"

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t dop1 = 5909;
constexpr uint16_t dop2 = 4001;

template<typename Record>
bool fill(const Record& record, Position& position)
{
    // 0 means not available.
    if (record.PDOP <= 0 || record.HDOP <= 0 || record.VDOP <= 0)
        return false;
    position.pdop = record.PDOP;
    position.hdop = record.HDOP;
    position.vdop = record.VDOP;
    return true;
}

} // namespace

bool hasDilution(uint16_t blockNumber)
{
    return blockNumber == dop1 || blockNumber == dop2;
}

bool addDilution(const void* block, Position& position)
{
    const auto& header = *static_cast<const TQX_MainHeader_s*>(block);
    if (gnssMillis(header.TOW, header.WNc) != position.time)
        return false;
    if (header.BlockNumber == dop1)
        return fill(*static_cast<const TQX_DOP1_s*>(block), position);
    if (header.BlockNumber != dop2)
        return false;
    const auto& record = *static_cast<const TQX_DOP2_s*>(block);
    return record.Error == 0 && fill(record, position);
}

} // namespace tqx
