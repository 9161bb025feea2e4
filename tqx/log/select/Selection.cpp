#include "tqx/log/select/Selection.h"

#include "tqx/log/DataError.h"
#include "tqx/log/select/TimeText.h"

#include <fmt/format.h>

#include <cmath>

namespace tqx
{

namespace
{

std::optional<GnssMillis> timeOf(const std::string& option, const std::string& text)
{
    if (text.empty())
        return std::nullopt;
    return parseTime(option, text);
}

/// In milliseconds. A decimal fraction, which a double seldom holds exactly, counts as whole ones.
GnssMillis intervalOf(double seconds)
{
    if (seconds == 0)
        return 1;
    const double millis = seconds * 1000;
    if (!(millis > 0 && millis <= static_cast<double>(millisPerWeek)) ||
        std::fabs(millis - std::round(millis)) > 1e-9 * millis || std::round(millis) < 1)
        throw DataError(fmt::format(
            "--interval: '{}' is no whole number of milliseconds up to a week", seconds));
    return static_cast<GnssMillis>(std::llround(millis));
}

} // namespace

Selection::Selection(const SelectionRequest& request)
    : types(request.types, request.notTypes), from(timeOf("--from", request.from)),
      to(timeOf("--to", request.to)), interval(intervalOf(request.interval)), every(request.every),
      sinceLast(TypeSelection::numbers)
{
    if (from && to && *from >= *to)
        throw DataError("--to " + request.to + " is not after --from " + request.from);
    if (request.where.empty())
        return;
    decoder = std::make_unique<RecordDecoder>();
    condition = std::make_unique<Condition>(request.where, types);
}

bool Selection::accepts(BlockStream& stream, const Block& block)
{
    const bool inTime = isInTime(block);
    if (!types.accepts(block.getNumber()) || !inTime || !meetsCondition(stream, block))
        return false;
    if (every == 1)
        return true;
    uint32_t& since = sinceLast[block.getNumber()];
    const bool isNext = since == 0;
    since = since + 1 == every ? 0 : since + 1;
    return isNext;
}

bool Selection::isInTime(const Block& block)
{
    if (!from && !to && interval == 1)
        return true;
    if (const std::optional<GnssMillis> own = block.getTime())
        time = own;
    return isInTime();
}

bool Selection::isInTime() const
{
    // Before the first time of a stream it is earlier than any that is asked for.
    if (!time)
        return !from && interval == 1;
    return *time % interval == 0 && (!from || *time >= *from) && (!to || *time < *to);
}

bool Selection::meetsCondition(BlockStream& stream, const Block& block)
{
    if (!condition)
        return true;
    if (!condition->reads(block.getNumber()))
        return condition->accepts(nullptr);
    const int32_t result = decoder->decode(block);
    if (result < 0) {
        stream.reportUndecodable(block, result);
        return false;
    }
    return condition->accepts(decoder->getRecord());
}

} // namespace tqx
