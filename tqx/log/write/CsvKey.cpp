#include "tqx/log/write/CsvKey.h"

#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

#include "TQX_RecordAccess.h"

namespace tqx::csv
{

void appendKeyColumns(Buffer& out)
{
    out.append("MessageIndex,WNc [week],TOW [second],UTC");
}

void appendKey(Buffer& out, uint64_t index, const void* record)
{
    constexpr unsigned decimals = 3;
    const auto& header = *static_cast<const Kor::MessageApi::TQX_MainHeader_s*>(record);
    const bool hasWeek = gnssMillis(0, header.WNc).has_value();
    const bool hasTow = gnssMillis(header.TOW, 0).has_value();
    number::appendUnsigned(out, index);
    out.append(',');
    if (hasWeek)
        number::appendUnsigned(out, header.WNc);
    out.append(',');
    if (hasTow)
        number::appendDecimal(out, false, header.TOW, decimals);
    out.append(',');
    if (hasWeek && hasTow)
        out.append(utcText(*gnssMillis(header.TOW, header.WNc)));
}

} // namespace tqx::csv
