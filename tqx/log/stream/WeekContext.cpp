#include "tqx/log/stream/WeekContext.h"

#include "TQX_codec.h"
#include "korcg_load.h"

namespace tqx
{

using namespace Kor::MessageApi;

bool WeekContext::follow(const Block& block)
{
    constexpr uint16_t endOfTow = 12;
    if (block.size < endOfTow)
        return false;
    const uint32_t tow = korcg_load_u32(block.data + 8);
    const bool isStart = TQX_beginsWeek(tow, lastTow);
    // Most blocks have the same time as the one before.
    if ((tow == lastTow && !isStart) || tow == TQX_noTOW || TQX_recordType(block.getNumber()) == 0)
        return false;
    weekCounter = static_cast<uint8_t>(weekCounter + (isStart ? 1 : 0));
    lastTow = tow;
    return isStart;
}

} // namespace tqx
