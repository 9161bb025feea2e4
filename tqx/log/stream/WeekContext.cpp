#include "tqx/log/stream/WeekContext.h"

#include "TQX_codec.h"
#include "korcg_load.h"
#include "tqx/log/schema/Schema.h"

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

template<typename IsKnown>
bool followIf(WeekContext& week, const Block& block, IsKnown isKnown)
{
    constexpr uint16_t endOfTow = 12;
    if (block.size < endOfTow)
        return false;
    const uint32_t tow = korcg_load_u32(block.data + 8);
    const bool isStart = TQX_beginsWeek(tow, week.lastTow);
    // Most blocks have the same time as the one before.
    if ((tow == week.lastTow && !isStart) || tow == TQX_noTOW || !isKnown(block.getNumber()))
        return false;
    week.weekCounter = static_cast<uint8_t>(week.weekCounter + (isStart ? 1 : 0));
    week.lastTow = tow;
    return isStart;
}

} // namespace

bool WeekContext::follow(const Block& block)
{
    return followIf(*this, block, [](uint16_t number) { return TQX_recordType(number) != 0; });
}

bool WeekContext::follow(const Block& block, const Schema& schema)
{
    return followIf(*this, block,
                    [&](uint16_t number) { return schema.getBlockType(number) != nullptr; });
}

bool WeekContext::followKnown(const Block& block)
{
    return followIf(*this, block, [](uint16_t) { return true; });
}

} // namespace tqx
