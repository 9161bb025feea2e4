#include "output/SummaryText.h"

#include "TQX_codec.h"
#include "output/SummaryWords.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tqx::tool
{

namespace
{

constexpr size_t mostPlaces = 10;

std::string nameOf(uint16_t number, const Schema& schema)
{
    const Kor::MessageApi::TQX_TypeLayout* layout = schema.getBlockType(number);
    return layout ? layout->name : "unknown";
}

/// "0, 2"
std::string revisionsText(const std::bitset<8>& revisions)
{
    std::vector<size_t> seen;
    for (size_t revision = 0; revision < revisions.size(); ++revision) {
        if (revisions[revision])
            seen.push_back(revision);
    }
    return fmt::format("{}", fmt::join(seen, ","));
}

class SummaryText
{
public:
    SummaryText(Buffer& buffer, const InputStream& source, const StreamSummary& content)
        : m_out(buffer), m_stream(source), m_summary(content), m_types(content.getTypes())
    {
        for (const auto& [number, type] : m_types)
            m_nameWidth = std::max(m_nameWidth, nameOf(number, m_summary.getSchema()).size());
    }

    void append()
    {
        appendTotals();
        appendTable();
        appendNeighbourTable(m_out, m_summary.getNeighbours(), m_stream.getCounts().bytes);
        appendOutages();
        appendGaps();
        appendDamage();
        appendFailures();
    }

private:
    void line(const char* name, const std::string& value)
    {
        m_out.append(fmt::format("  {:<16} {}\n", name, value));
    }
    void appendTotals();
    void appendTable();
    void appendGaps();
    void appendOutages();
    void appendDamage();
    void appendFailures();
    void appendMore(uint64_t all)
    {
        if (all > mostPlaces)
            m_out.append(fmt::format("  ... and {} more\n", all - mostPlaces));
    }
    std::string placeOf(const std::string& file, uint64_t offset) const
    {
        return m_stream.getNames().size() > 1 ? fmt::format("{}: {}", printable(file), offset)
                                              : std::to_string(offset);
    }

    Buffer& m_out;
    const InputStream& m_stream;
    const StreamSummary& m_summary;
    const std::map<uint16_t, const TypeSummary*> m_types;
    size_t m_nameWidth = 7;
};

void SummaryText::appendTotals()
{
    const StreamCounts& counts = m_stream.getCounts();
    m_out.append(headOf(m_stream.getNames()) + "\n");
    line("bytes", std::to_string(counts.bytes));
    uint64_t blocks = 0;
    for (const auto& [number, type] : m_types)
        blocks += type->blocks;
    line("blocks", std::to_string(blocks));
    if (m_summary.getFirst()) {
        const GnssMillis first = *m_summary.getFirst();
        const GnssMillis last = *m_summary.getLast();
        line("first", timeText(first));
        line("last", timeText(last));
        line("duration", durationText(last - first));
    }
    if (const uint64_t times = m_summary.getStepsBack(); times != 0) {
        const BlockPlace& place = m_summary.getFirstStepBack();
        line("time runs back",
             fmt::format("{} {}, first at {}", times, times == 1 ? "time" : "times",
                         placeOf(place.file, place.offset)));
    }
    if (m_summary.getRepeatedEpochs() != 0)
        line("repeated epochs", std::to_string(m_summary.getRepeatedEpochs()));
    line("CRC errors", std::to_string(counts.crcErrors));
    line("invalid lengths", std::to_string(counts.invalidLengths));
    std::string dropped = std::to_string(counts.droppedBytes);
    if (counts.droppedBytes != 0) {
        dropped += fmt::format(", {:.3g} %", static_cast<double>(counts.droppedBytes) * 100 /
                                                 static_cast<double>(counts.bytes));
    }
    line("dropped bytes", dropped);
    line("undecodable", std::to_string(counts.undecodable));
    line("unknown", std::to_string(m_summary.getUnknown()));
}

void SummaryText::appendTable()
{
    if (m_types.empty())
        return;
    m_out.append(fmt::format("\n  number  {:<{}}  revisions  {:>10}  {:>12}  {:>7}  {:>5}  rate\n",
                             "type", m_nameWidth, "blocks", "bytes", "share", "gaps"));
    const auto bytes = static_cast<double>(m_stream.getCounts().bytes);
    for (const auto& [number, type] : m_types) {
        const std::optional<uint64_t> usual = type->intervals.getUsual();
        const uint64_t gaps = usual ? type->intervals.getGapCount(*usual) : 0;
        m_out.append(fmt::format("  {:>6}  {:<{}}  {:<9}  {:>10}  {:>12}  {:>5.1f} %  {:>5}  {}\n",
                                 number, nameOf(number, m_summary.getSchema()), m_nameWidth,
                                 revisionsText(type->revisions), type->blocks, type->bytes,
                                 static_cast<double>(type->bytes) * 100 / bytes, gaps,
                                 rateText(type->intervals)));
    }
}

void SummaryText::appendGaps()
{
    size_t found = 0;
    for (const auto& [number, type] : m_types) {
        const std::optional<uint64_t> usual = type->intervals.getUsual();
        if (!usual)
            continue;
        for (const auto& [gap, times] : type->intervals.getGapsByLength(*usual)) {
            if (++found == 1)
                m_out.append("\n  gaps\n");
            if (found > mostPlaces)
                continue;
            const bool isOnce = times == 1;
            m_out.append(fmt::format("  {:>6}  {:<{}}  {}{} after {}, {} {} missing{}\n", number,
                                     nameOf(number, m_summary.getSchema()), m_nameWidth,
                                     isOnce ? "" : fmt::format("{} times ", times),
                                     secondsText(gap.millis) + (isOnce ? "" : ", first"),
                                     weekText(gap.after), gap.missing,
                                     gap.missing == 1 ? "block" : "blocks", isOnce ? "" : " each"));
        }
    }
    appendMore(found);
}

/// Longest first.
void SummaryText::appendOutages()
{
    const std::optional<uint64_t> usual = m_summary.getUsualInterval();
    if (!usual)
        return;
    std::vector<Intervals::Gap> outages = m_summary.getIntervals().getGaps(*usual, mostListed);
    if (outages.empty())
        return;
    const auto isLonger = [](const Intervals::Gap& a, const Intervals::Gap& b) {
        return a.millis > b.millis;
    };
    std::stable_sort(outages.begin(), outages.end(), isLonger);
    m_out.append("\n  outages: no block of any type\n");
    for (size_t i = 0; i < std::min(outages.size(), mostPlaces); ++i) {
        const Intervals::Gap& outage = outages[i];
        m_out.append(fmt::format("  {:>12} after {}, {} {} missing\n", secondsText(outage.millis),
                                 timeText(outage.after), outage.missing,
                                 outage.missing == 1 ? "epoch" : "epochs"));
    }
    appendMore(m_summary.getIntervals().getGapCount(*usual));
}

void SummaryText::appendDamage()
{
    if (m_summary.getDamage().empty())
        return;
    m_out.append("\n  damage\n");
    const size_t shown = std::min(m_summary.getDamage().size(), mostPlaces);
    for (size_t i = 0; i < shown; ++i) {
        const StreamGap& gap = m_summary.getDamage()[i];
        m_out.append(fmt::format("  {:>10}  {}\n", placeOf(gap.file, gap.offset), gap.describe()));
    }
    appendMore(m_summary.getDamagedPlaces());
}

void SummaryText::appendFailures()
{
    const char* head = "\n  blocks that do not decode\n";
    for (const auto& [number, type] : m_types) {
        for (const auto& [code, failure] : type->failures) {
            m_out.append(head);
            head = "";
            m_out.append(fmt::format("  {:>6}  {:<{}}  {} with {} ({}), first at {}\n", number,
                                     nameOf(number, m_summary.getSchema()), m_nameWidth,
                                     failure.blocks, m_summary.getSchema().getErrorName(code), code,
                                     placeOf(failure.file, failure.offset)));
        }
    }
}

} // namespace

void appendSummaryText(Buffer& out, const InputStream& stream, const StreamSummary& summary)
{
    SummaryText(out, stream, summary).append();
}

} // namespace tqx::tool
