#include "tqx/gnss/track/TrackText.h"

#include "tqx/log/text/FixedNumber.h"
#include "tqx/log/time/LeapSeconds.h"

namespace tqx
{

bool appendKnown(Buffer& out, double value, int decimals)
{
    if (!std::isfinite(value))
        return false;
    appendFixed(out, value, decimals);
    return true;
}

void appendXml(Buffer& out, std::string_view text)
{
    for (const char character : text) {
        switch (character) {
        case '&':
            out.append("&amp;");
            break;
        case '<':
            out.append("&lt;");
            break;
        case '>':
            out.append("&gt;");
            break;
        case '"':
            out.append("&quot;");
            break;
        default:
            out.append(static_cast<unsigned char>(character) < 0x20 ? ' ' : character);
        }
    }
}

std::string xmlTime(GnssMillis time)
{
    constexpr size_t second = 17; // in the text
    std::string text = utcText(time);
    if (text.compare(second, 2, "60") == 0)
        text.replace(second, 6, "59.999");
    return text;
}

std::string_view levelText(AccuracyLevel level)
{
    switch (level) {
    case AccuracyLevel::Sigma:
        return "1 sigma";
    case AccuracyLevel::Percent95:
        return "95 %";
    case AccuracyLevel::None:
        break;
    }
    return "";
}

} // namespace tqx
