#include "output/SummaryWords.h"

#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <optional>

namespace tqx::tool
{

std::string headOf(const std::vector<std::string>& names)
{
    constexpr size_t mostNames = 3;
    return names.size() > mostNames ? fmt::format("{} files, {} to {}", names.size(),
                                                  printable(names.front()), printable(names.back()))
                                    : printable(fmt::format("{}", fmt::join(names, ", ")));
}

std::string secondsText(uint64_t millis)
{
    return fmt::format("{} s", static_cast<double>(millis) / 1000);
}

std::string durationText(uint64_t millis)
{
    const uint64_t seconds = millis / 1000;
    const std::string text = secondsText(millis);
    return seconds < 60 ? text
                        : fmt::format("{}, {}:{:02}:{:02}", text, seconds / 3600, seconds / 60 % 60,
                                      seconds % 60);
}

std::string rateText(const Intervals& intervals)
{
    const std::optional<uint64_t> usual = intervals.getUsual();
    if (!usual)
        return "-";
    return *usual > 1000 ? "every " + secondsText(*usual)
                         : fmt::format("{:.4g} Hz", 1000 / static_cast<double>(*usual));
}

} // namespace tqx::tool
