#include "output/SummaryTable.h"

#include "output/SummaryWords.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace tqx::tool
{

namespace
{

constexpr std::array<const char*, 14> rows = {
    "bytes",      "blocks",          "first (GPS)",     "last (GPS)",     "duration",
    "outages",    "time runs back",  "repeated epochs", "damaged places", "dropped bytes",
    "CRC errors", "invalid lengths", "undecodable",     "unknown"};
constexpr const char* parting = "  ";

/// "3600, 1 Hz, 2 gaps"
std::string typeText(const TypeSummary& type)
{
    std::string text = std::to_string(type.blocks);
    const std::optional<uint64_t> usual = type.intervals.getUsual();
    if (!usual)
        return text;
    text += ", " + rateText(type.intervals);
    if (const uint64_t gaps = type.intervals.getGapCount(*usual); gaps != 0)
        text += fmt::format(", {} {}", gaps, gaps == 1 ? "gap" : "gaps");
    return text;
}

std::vector<std::string> totalsOf(const StreamCounts& counts, const StreamSummary& summary,
                                  uint64_t blocks)
{
    const auto first = summary.getFirst();
    const auto last = summary.getLast();
    const std::optional<uint64_t> usual = summary.getUsualInterval();
    std::vector<std::string> totals = {
        std::to_string(counts.bytes),
        std::to_string(blocks),
        first ? dateText(*first) : "-",
        last ? dateText(*last) : "-",
        first && last ? durationText(*last - *first) : "-",
        usual ? std::to_string(summary.getIntervals().getGapCount(*usual)) : "-"};
    for (const uint64_t count : {summary.getStepsBack(), summary.getRepeatedEpochs(),
                                 summary.getDamagedPlaces(), counts.droppedBytes, counts.crcErrors,
                                 counts.invalidLengths, counts.undecodable, summary.getUnknown()})
        totals.push_back(std::to_string(count));
    return totals;
}

} // namespace

void SummaryTable::add(const InputStream& stream, const StreamSummary& summary)
{
    Column column;
    column.name = headOf(stream.getNames());
    uint64_t blocks = 0;
    for (const auto& [number, type] : summary.getTypes()) {
        blocks += type->blocks;
        column.types[number] = typeText(*type);
        m_types[number] = describeBlock(number, summary.getSchema());
        column.width = std::max(column.width, column.types[number].size());
    }
    column.totals = totalsOf(stream.getCounts(), summary, blocks);
    for (const std::string& cell : column.totals)
        column.width = std::max(column.width, cell.size());
    column.width = std::max(column.width, column.name.size());
    m_columns.push_back(std::move(column));
}

void SummaryTable::appendPiece(Buffer& out, size_t first, size_t last, size_t labelWidth) const
{
    const auto line = [&](const std::string& label, const auto& cellOf) {
        std::string text = fmt::format("{:<{}}", label, labelWidth);
        for (size_t i = first; i < last; ++i)
            text += fmt::format("{}{:>{}}", parting, cellOf(m_columns[i]), m_columns[i].width);
        out.append(text + '\n');
    };
    line("", [](const Column& column) { return column.name; });
    for (size_t row = 0; row < rows.size(); ++row)
        line(rows[row], [&](const Column& column) { return column.totals[row]; });
    if (!m_types.empty())
        out.append('\n');
    for (const auto& [number, label] : m_types) {
        line(label, [wanted = number](const Column& column) {
            const auto found = column.types.find(wanted);
            return found == column.types.end() ? std::string("-") : found->second;
        });
    }
}

void SummaryTable::append(Buffer& out, size_t width) const
{
    size_t labelWidth = 0;
    for (const char* row : rows)
        labelWidth = std::max(labelWidth, std::string_view(row).size());
    for (const auto& [number, label] : m_types)
        labelWidth = std::max(labelWidth, label.size());
    for (size_t first = 0; first < m_columns.size();) {
        size_t last = first;
        size_t used = labelWidth;
        do {
            used += std::string_view(parting).size() + m_columns[last++].width;
        } while (last < m_columns.size() &&
                 used + std::string_view(parting).size() + m_columns[last].width <= width);
        if (first != 0)
            out.append('\n');
        appendPiece(out, first, last, labelWidth);
        first = last;
    }
}

} // namespace tqx::tool
