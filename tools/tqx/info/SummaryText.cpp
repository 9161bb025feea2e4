#include "SummaryText.h"

#include "TQX_codec.h"

#include <fmt/format.h>

#include <algorithm>

namespace tool
{

namespace
{

const char* nameOf(uint16_t number)
{
    const Kor::MessageApi::TQX_TypeLayout* layout = TQX_layout(TQX_recordType(number));
    return layout ? layout->name : "unknown";
}

/// "10 Hz", "every 30 s", or "-" when blocks come at no regular interval.
std::string rateText(const Intervals& intervals)
{
    const std::optional<uint64_t> usual = intervals.getUsual();
    if (!usual)
        return "-";
    const double seconds = static_cast<double>(*usual) / 1000;
    return seconds > 1 ? fmt::format("every {} s", seconds) : fmt::format("{:.4g} Hz", 1 / seconds);
}

void appendTotals(Buffer& out, const StreamCounts& counts, const StreamSummary& summary)
{
    const auto line = [&out](const char* name, const std::string& value) {
        out.append(fmt::format("  {:<16}{}\n", name, value));
    };
    line("bytes", std::to_string(counts.bytes));
    line("blocks", std::to_string(summary.getBlocks()));
    if (summary.getFirst()) {
        const GnssMillis first = *summary.getFirst();
        const GnssMillis last = *summary.getLast();
        line("first", weekText(first) + "  " + dateText(first));
        line("last", weekText(last) + "  " + dateText(last));
        if (last >= first)
            line("duration", fmt::format("{} s", static_cast<double>(last - first) / 1000));
    }
    line("CRC errors", std::to_string(counts.crcErrors));
    line("invalid lengths", std::to_string(counts.invalidLengths));
    line("dropped bytes", std::to_string(counts.droppedBytes));
    line("undecodable", std::to_string(counts.undecodable));
    line("unknown", std::to_string(summary.getUnknown()));
}

void appendTable(Buffer& out, const StreamSummary& summary)
{
    if (summary.getTypes().empty())
        return;
    size_t width = 4;
    for (const auto& [number, type] : summary.getTypes())
        width = std::max(width, std::string_view(nameOf(number)).size());
    out.append(fmt::format("\n  number  {:<{}}  {:>10}  {:>12}  {:>5}  rate\n", "type", width,
                           "blocks", "bytes", "gaps"));
    for (const auto& [number, type] : summary.getTypes())
        out.append(fmt::format("  {:>6}  {:<{}}  {:>10}  {:>12}  {:>5}  {}\n", number,
                               nameOf(number), width, type.blocks, type.bytes,
                               type.intervals.getGaps(), rateText(type.intervals)));
}

void appendFailures(Buffer& out, const StreamSummary& summary)
{
    const char* head = "\n  blocks that do not decode\n";
    for (const auto& [number, type] : summary.getTypes()) {
        for (const auto& [code, count] : type.failures) {
            out.append(head);
            head = "";
            out.append(
                fmt::format("  {:>6}  {} x {} ({})\n", number, count, TQX_errorName(code), code));
        }
    }
}

} // namespace

void appendSummaryText(Buffer& out, const std::string& name, const StreamCounts& counts,
                       const StreamSummary& summary)
{
    out.append(name);
    out.append('\n');
    appendTotals(out, counts, summary);
    appendTable(out, summary);
    appendFailures(out, summary);
}

} // namespace tool
