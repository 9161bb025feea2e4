#include "output/SummaryText.h"

#include <fmt/format.h>

namespace tqx::tool
{

void appendNeighbourTable(Buffer& out, const NeighbourSummary& neighbours, uint64_t bytes)
{
    if (neighbours.isEmpty())
        return;
    const auto line = [&](const char* kind, const std::string& type, const NeighbourCount& found) {
        out.append(fmt::format(
            "  {:<6}  {:<15}  {:>10}  {:>12}  {:>5.1f} %\n", kind, type, found.count, found.bytes,
            static_cast<double>(found.bytes) * 100 / static_cast<double>(bytes)));
    };
    out.append(fmt::format("\n  {:<23}  {:>10}  {:>12}  {:>7}\n", "between blocks", "count",
                           "bytes", "share"));
    for (const auto& [address, found] : neighbours.getSentences())
        line("NMEA", address.empty() ? "others" : address, found);
    for (const auto& [number, found] : neighbours.getFrames())
        line("RTCM 3", std::to_string(number), found);
    if (neighbours.getText().count != 0)
        line("ASCII", "", neighbours.getText());
}

} // namespace tqx::tool
