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
        std::fabs(millis - std::round(millis)) > 1e-9 * millis || std::round(millis) < 1) {
        throw DataError(fmt::format(
            "--interval: '{}' is not a whole number of milliseconds up to a week", seconds));
    }
    return static_cast<GnssMillis>(std::llround(millis));
}

} // namespace

Selection::Selection(const SelectionRequest& request)
    : m_types(request.types, request.notTypes, request.schema),
      m_from(timeOf("--from", request.from)), m_to(timeOf("--to", request.to)),
      m_interval(intervalOf(request.interval)), m_every(request.every),
      m_sinceLast(TypeSelection::numbers)
{
    if (m_from && m_to && *m_from >= *m_to)
        throw DataError("--to " + request.to + " is not after --from " + request.from);
    if (request.where.empty())
        return;
    m_decoder = std::make_unique<RecordDecoder>(request.schema);
    m_condition = std::make_unique<Condition>(request.where, m_types);
}

bool Selection::accepts(BlockStream& stream, const Block& block)
{
    const bool inTime = isInTime(block);
    return m_types.accepts(block.getNumber()) && inTime && acceptsFound(stream, block);
}

bool Selection::acceptsFound(BlockStream& stream, const Block& block)
{
    if (!meetsCondition(stream, block))
        return false;
    if (m_every == 1)
        return true;
    uint32_t& since = m_sinceLast[block.getNumber()];
    const bool isNext = since == 0;
    since = since + 1 == m_every ? 0 : since + 1;
    return isNext;
}

bool Selection::isInTime(const Block& block)
{
    if (!m_from && !m_to && m_interval == 1)
        return true;
    if (const std::optional<GnssMillis> own = block.getTime())
        m_time = own;
    return isInTime();
}

bool Selection::isInTime() const
{
    // Before the first time of a stream it is earlier than any that is asked for.
    if (!m_time)
        return !m_from && m_interval == 1;
    return *m_time % m_interval == 0 && (!m_from || *m_time >= *m_from) &&
           (!m_to || *m_time < *m_to);
}

bool Selection::meetsCondition(BlockStream& stream, const Block& block)
{
    if (!m_condition)
        return true;
    if (!m_condition->reads(block.getNumber()))
        return m_condition->accepts(nullptr);
    const int32_t result = m_decoder->decode(block, stream.getContext());
    if (result < 0) {
        stream.reportUndecodable(block, result);
        return false;
    }
    return m_condition->accepts(m_decoder->getRecord());
}

} // namespace tqx
