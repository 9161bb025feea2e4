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

std::string nameOf(uint16_t number)
{
    const Kor::MessageApi::TQX_TypeLayout* layout = TQX_layout(TQX_recordType(number));
    return layout ? layout->name : "unknown";
}

/// "0, 2"
std::string revisionsText(const std::bitset<8>& revisions)
{
    std::vector<size_t> seen;
    for (size_t revision = 0; revision < revisions.size(); ++revision)
        if (revisions[revision])
            seen.push_back(revision);
    return fmt::format("{}", fmt::join(seen, ","));
}

class SummaryText
{
public:
    SummaryText(Buffer& buffer, const InputStream& source, const StreamSummary& content)
        : out(buffer), stream(source), summary(content), types(content.getTypes())
    {
        for (const auto& [number, type] : types)
            nameWidth = std::max(nameWidth, nameOf(number).size());
    }

    void append()
    {
        appendTotals();
        appendTable();
        appendNeighbourTable(out, summary.getNeighbours(), stream.getCounts().bytes);
        appendGaps();
        appendOutages();
        appendDamage();
        appendFailures();
    }

private:
    void line(const char* name, const std::string& value)
    {
        out.append(fmt::format("  {:<16} {}\n", name, value));
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
            out.append(fmt::format("  ... and {} more\n", all - mostPlaces));
    }
    std::string placeOf(const std::string& file, uint64_t offset) const
    {
        return stream.getNames().size() > 1 ? fmt::format("{}: {}", printable(file), offset)
                                            : std::to_string(offset);
    }

    Buffer& out;
    const InputStream& stream;
    const StreamSummary& summary;
    const std::map<uint16_t, const TypeSummary*> types;
    size_t nameWidth = 7;
};

void SummaryText::appendTotals()
{
    const StreamCounts& counts = stream.getCounts();
    out.append(headOf(stream.getNames()) + "\n");
    line("bytes", std::to_string(counts.bytes));
    uint64_t blocks = 0;
    for (const auto& [number, type] : types)
        blocks += type->blocks;
    line("blocks", std::to_string(blocks));
    if (summary.getFirst()) {
        const GnssMillis first = *summary.getFirst();
        const GnssMillis last = *summary.getLast();
        line("first", timeText(first));
        line("last", timeText(last));
        line("duration", durationText(last - first));
    }
    if (const uint64_t times = summary.getStepsBack(); times != 0) {
        const BlockPlace& place = summary.getFirstStepBack();
        line("time runs back",
             fmt::format("{} {}, first at {}", times, times == 1 ? "time" : "times",
                         placeOf(place.file, place.offset)));
    }
    if (summary.getRepeatedEpochs() != 0)
        line("repeated epochs", std::to_string(summary.getRepeatedEpochs()));
    line("CRC errors", std::to_string(counts.crcErrors));
    line("invalid lengths", std::to_string(counts.invalidLengths));
    std::string dropped = std::to_string(counts.droppedBytes);
    if (counts.droppedBytes != 0)
        dropped += fmt::format(", {:.3g} %", static_cast<double>(counts.droppedBytes) * 100 /
                                                 static_cast<double>(counts.bytes));
    line("dropped bytes", dropped);
    line("undecodable", std::to_string(counts.undecodable));
    line("unknown", std::to_string(summary.getUnknown()));
}

void SummaryText::appendTable()
{
    if (types.empty())
        return;
    out.append(fmt::format("\n  number  {:<{}}  revisions  {:>10}  {:>12}  {:>7}  {:>5}  rate\n",
                           "type", nameWidth, "blocks", "bytes", "share", "gaps"));
    const auto bytes = static_cast<double>(stream.getCounts().bytes);
    for (const auto& [number, type] : types) {
        const std::optional<uint64_t> usual = type->intervals.getUsual();
        const uint64_t gaps = usual ? type->intervals.getGapCount(*usual) : 0;
        out.append(fmt::format(
            "  {:>6}  {:<{}}  {:<9}  {:>10}  {:>12}  {:>5.1f} %  {:>5}  {}\n", number,
            nameOf(number), nameWidth, revisionsText(type->revisions), type->blocks, type->bytes,
            static_cast<double>(type->bytes) * 100 / bytes, gaps, rateText(type->intervals)));
    }
}

void SummaryText::appendGaps()
{
    size_t found = 0;
    for (const auto& [number, type] : types) {
        const std::optional<uint64_t> usual = type->intervals.getUsual();
        if (!usual)
            continue;
        for (const auto& [gap, times] : type->intervals.getGapsByLength(*usual)) {
            if (++found == 1)
                out.append("\n  gaps\n");
            if (found > mostPlaces)
                continue;
            const bool isOnce = times == 1;
            out.append(fmt::format(
                "  {:>6}  {:<{}}  {}{} after {}, {} {} missing{}\n", number, nameOf(number),
                nameWidth, isOnce ? "" : fmt::format("{} times ", times),
                secondsText(gap.millis) + (isOnce ? "" : ", first"), weekText(gap.after),
                gap.missing, gap.missing == 1 ? "block" : "blocks", isOnce ? "" : " each"));
        }
    }
    appendMore(found);
}

/// Longest first.
void SummaryText::appendOutages()
{
    const std::optional<uint64_t> usual = summary.getUsualInterval();
    if (!usual)
        return;
    std::vector<Intervals::Gap> outages = summary.getIntervals().getGaps(*usual, mostListed);
    if (outages.empty())
        return;
    const auto isLonger = [](const Intervals::Gap& a, const Intervals::Gap& b) {
        return a.millis > b.millis;
    };
    std::stable_sort(outages.begin(), outages.end(), isLonger);
    out.append("\n  outages, with blocks of no type\n");
    for (size_t i = 0; i < std::min(outages.size(), mostPlaces); ++i)
        out.append(fmt::format("  {:>12} after {}\n", secondsText(outages[i].millis),
                               timeText(outages[i].after)));
    appendMore(summary.getIntervals().getGapCount(*usual));
}

void SummaryText::appendDamage()
{
    if (summary.getDamage().empty())
        return;
    out.append("\n  damage\n");
    const size_t shown = std::min(summary.getDamage().size(), mostPlaces);
    for (size_t i = 0; i < shown; ++i) {
        const StreamGap& gap = summary.getDamage()[i];
        out.append(fmt::format("  {:>10}  {}\n", placeOf(gap.file, gap.offset), gap.describe()));
    }
    appendMore(summary.getDamagedPlaces());
}

void SummaryText::appendFailures()
{
    const char* head = "\n  blocks that do not decode\n";
    for (const auto& [number, type] : types) {
        for (const auto& [code, failure] : type->failures) {
            out.append(head);
            head = "";
            out.append(fmt::format("  {:>6}  {:<{}}  {} with {} ({}), first at {}\n", number,
                                   nameOf(number), nameWidth, failure.blocks, TQX_errorName(code),
                                   code, placeOf(failure.file, failure.offset)));
        }
    }
}

} // namespace

void appendSummaryText(Buffer& out, const InputStream& stream, const StreamSummary& summary)
{
    SummaryText(out, stream, summary).append();
}

} // namespace tqx::tool
