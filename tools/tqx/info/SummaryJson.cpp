#include "SummaryText.h"

#include "JsonText.h"
#include "TQX_codec.h"

#include <fmt/format.h>

#include <string>

namespace tool
{

namespace
{

void appendTime(Buffer& out, const char* key, const std::optional<GnssMillis>& time)
{
    if (time)
        out.append(fmt::format(",\"{}\":{{\"week\":{},\"tow\":{},\"date\":\"{}\"}}", key,
                               *time / millisPerWeek,
                               static_cast<double>(*time % millisPerWeek) / 1000, dateText(*time)));
}

void appendType(Buffer& out, uint16_t number, const TypeSummary& type)
{
    out.append(fmt::format("{{\"number\":{}", number));
    if (const Kor::MessageApi::TQX_TypeLayout* layout = TQX_layout(TQX_recordType(number)))
        out.append(fmt::format(",\"name\":\"{}\"", layout->name));
    out.append(fmt::format(",\"blocks\":{},\"bytes\":{}", type.blocks, type.bytes));
    if (const std::optional<uint64_t> usual = type.intervals.getUsual())
        out.append(fmt::format(",\"interval\":{},\"gaps\":{}", static_cast<double>(*usual) / 1000,
                               type.intervals.getGaps()));
    if (!type.failures.empty()) {
        const char* separator = ",\"undecodable\":[";
        for (const auto& [code, count] : type.failures) {
            out.append(fmt::format("{}{{\"code\":{},\"name\":\"{}\",\"blocks\":{}}}", separator,
                                   code, TQX_errorName(code), count));
            separator = ",";
        }
        out.append(']');
    }
    out.append('}');
}

} // namespace

void appendSummaryJson(Buffer& out, const std::string& name, const StreamCounts& counts,
                       const StreamSummary& summary)
{
    out.append("{\"file\":");
    json::appendString(out, name);
    out.append(fmt::format(",\"bytes\":{},\"blocks\":{}", counts.bytes, summary.getBlocks()));
    appendTime(out, "first", summary.getFirst());
    appendTime(out, "last", summary.getLast());
    out.append(fmt::format(",\"crcErrors\":{},\"invalidLengths\":{},\"droppedBytes\":{}"
                           ",\"undecodable\":{},\"unknown\":{},\"types\":[",
                           counts.crcErrors, counts.invalidLengths, counts.droppedBytes,
                           counts.undecodable, summary.getUnknown()));
    const char* separator = "";
    for (const auto& [number, type] : summary.getTypes()) {
        out.append(separator);
        appendType(out, number, type);
        separator = ",";
    }
    out.append("]}\n");
}

} // namespace tool
