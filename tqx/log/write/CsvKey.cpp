#include "tqx/log/write/CsvKey.h"

#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

#include "TQX_RecordAccess.h"

namespace tqx
{

namespace
{

std::string timeCells(uint32_t tow, uint16_t week)
{
    constexpr unsigned decimals = 3;
    const bool hasWeek = gnssMillis(0, week).has_value();
    const bool hasTow = gnssMillis(tow, 0).has_value();
    Buffer cells;
    cells.append(',');
    if (hasWeek)
        number::appendUnsigned(cells, week);
    cells.append(',');
    if (hasTow)
        number::appendDecimal(cells, false, tow, decimals);
    cells.append(',');
    if (hasWeek && hasTow)
        cells.append(utcText(*gnssMillis(tow, week)));
    return std::string(cells.view());
}

} // namespace

void CsvKey::appendColumns(Buffer& out, const ValueStyle& style)
{
    out.append("MessageIndex,WNc [");
    out.append(shownUnit("week", style));
    out.append("],TOW [");
    out.append(shownUnit("second", style));
    out.append("],UTC");
}

void CsvKey::append(Buffer& out, uint64_t index, const void* record)
{
    const auto& header = *static_cast<const Kor::MessageApi::TQX_MainHeader_s*>(record);
    if (m_time.empty() || header.TOW != m_tow || header.WNc != m_week) {
        m_tow = header.TOW;
        m_week = header.WNc;
        m_time = timeCells(m_tow, m_week);
    }
    number::appendUnsigned(out, index);
    out.append(m_time);
}

} // namespace tqx
