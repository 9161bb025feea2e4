#include "output/SummaryText.h"

#include "TQX_codec.h"

#include <nlohmann/json.hpp>

namespace tqx::tool
{

namespace
{

using Json = nlohmann::ordered_json;

double secondsOf(uint64_t millis)
{
    return static_cast<double>(millis) / 1000;
}

Json timeOf(GnssMillis time)
{
    return {{"week", time / millisPerWeek},
            {"tow", secondsOf(time % millisPerWeek)},
            {"date", dateText(time)}};
}

void addIntervals(Json& object, const Intervals& intervals)
{
    const std::optional<uint64_t> usual = intervals.getUsual();
    if (!usual)
        return;
    object["interval"] = secondsOf(*usual);
    object["gaps"] = Json::array();
    for (const Intervals::Gap& gap : intervals.getGaps())
        object["gaps"].push_back({{"seconds", secondsOf(gap.millis)},
                                  {"missing", gap.missing},
                                  {"times", gap.times},
                                  {"after", timeOf(gap.after)}});
}

Json typeOf(uint16_t number, const TypeSummary& type)
{
    Json object = {{"number", number}};
    if (const Kor::MessageApi::TQX_TypeLayout* layout = TQX_layout(TQX_recordType(number)))
        object["name"] = layout->name;
    object["revisions"] = Json::array();
    for (size_t revision = 0; revision < type.revisions.size(); ++revision)
        if (type.revisions[revision])
            object["revisions"].push_back(revision);
    object["blocks"] = type.blocks;
    object["bytes"] = type.bytes;
    addIntervals(object, type.intervals);
    for (const auto& [code, failure] : type.failures)
        object["undecodable"].push_back({{"code", code},
                                         {"name", TQX_errorName(code)},
                                         {"blocks", failure.blocks},
                                         {"file", failure.file},
                                         {"offset", failure.offset}});
    return object;
}

} // namespace

void appendSummaryJson(Buffer& out, const InputStream& stream, const StreamSummary& summary)
{
    const StreamCounts& counts = stream.getCounts();
    Json object = {{"files", stream.getNames()}, {"bytes", counts.bytes}, {"blocks", 0}};
    if (summary.getFirst()) {
        object["first"] = timeOf(*summary.getFirst());
        object["last"] = timeOf(*summary.getLast());
    }
    object["crcErrors"] = counts.crcErrors;
    object["invalidLengths"] = counts.invalidLengths;
    object["droppedBytes"] = counts.droppedBytes;
    object["undecodable"] = counts.undecodable;
    object["unknown"] = summary.getUnknown();
    object["types"] = Json::array();
    uint64_t blocks = 0;
    for (const auto& [number, type] : summary.getTypes()) {
        object["types"].push_back(typeOf(number, *type));
        blocks += type->blocks;
    }
    object["blocks"] = blocks;
    object["damagedPlaces"] = summary.getDamagedPlaces();
    object["damage"] = Json::array();
    for (const StreamGap& gap : summary.getDamage())
        object["damage"].push_back({{"file", gap.file},
                                    {"offset", gap.offset},
                                    {"bytes", gap.bytes},
                                    {"crcErrors", gap.crcErrors},
                                    {"invalidLengths", gap.invalidLengths}});
    // Names of files may be no UTF-8.
    out.append(object.dump(-1, ' ', true, Json::error_handler_t::replace) + "\n");
}

} // namespace tqx::tool
