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

/// The first gaps one by one under `name`, and their number under "<name>Count".
void addGaps(Json& object, const std::string& name, const Intervals& intervals, uint64_t usual)
{
    object[name + "Count"] = intervals.getGapCount(usual);
    Json& list = object[name] = Json::array();
    for (const Intervals::Gap& gap : intervals.getGaps(usual, mostListed)) {
        list.push_back({{"seconds", secondsOf(gap.millis)},
                        {"missing", gap.missing},
                        {"after", timeOf(gap.after)}});
    }
}

Json placeOf(const BlockPlace& place, const Schema& schema)
{
    Json object = {{"file", place.file}, {"offset", place.offset}, {"number", place.number}};
    if (place.code != 0) {
        object["code"] = place.code;
        object["name"] = schema.getErrorName(place.code);
    }
    return object;
}

Json placesOf(const std::vector<BlockPlace>& places, const Schema& schema)
{
    Json list = Json::array();
    for (const BlockPlace& place : places)
        list.push_back(placeOf(place, schema));
    return list;
}

Json typeOf(uint16_t number, const TypeSummary& type, const Schema& schema)
{
    Json object = {{"number", number}};
    if (const Kor::MessageApi::TQX_TypeLayout* layout = schema.getBlockType(number))
        object["name"] = layout->name;
    object["revisions"] = Json::array();
    for (size_t revision = 0; revision < type.revisions.size(); ++revision) {
        if (type.revisions[revision])
            object["revisions"].push_back(revision);
    }
    object["blocks"] = type.blocks;
    object["bytes"] = type.bytes;
    if (const std::optional<uint64_t> usual = type.intervals.getUsual()) {
        object["interval"] = secondsOf(*usual);
        addGaps(object, "gaps", type.intervals, *usual);
    }
    for (const auto& [code, failure] : type.failures) {
        object["undecodable"].push_back({{"code", code},
                                         {"name", schema.getErrorName(code)},
                                         {"blocks", failure.blocks},
                                         {"file", failure.file},
                                         {"offset", failure.offset}});
    }
    return object;
}

Json countOf(const NeighbourCount& found)
{
    return {{"count", found.count}, {"bytes", found.bytes}};
}

/// The total of one kind of counts, and the counts by type under `name`.
template<typename Types>
Json kindOf(const NeighbourCount& all, const char* name, const Types& types)
{
    Json object = countOf(all);
    object["types"] = Json::array();
    for (const auto& [type, found] : types) {
        Json entry = {{name, type}};
        entry.update(countOf(found));
        object["types"].push_back(entry);
    }
    return object;
}

Json neighboursOf(const StreamCounts& counts, const NeighbourSummary& neighbours)
{
    return {
        {"nmea", kindOf(counts.of(NeighbourKind::Nmea), "address", neighbours.getSentences())},
        {"rtcm3", kindOf(counts.of(NeighbourKind::Rtcm3), "number", neighbours.getFrames())},
        {"ascii", countOf(counts.of(NeighbourKind::Ascii))},
    };
}

} // namespace

void appendSummaryJson(Buffer& out, const InputStream& stream, const StreamSummary& summary)
{
    const StreamCounts& counts = stream.getCounts();
    Json object = {{"files", stream.getNames()}, {"bytes", counts.bytes}, {"blocks", 0}};
    if (summary.getFirst()) {
        object["first"] = timeOf(*summary.getFirst());
        object["last"] = timeOf(*summary.getLast());
        object["stepsBack"] = summary.getStepsBack();
        if (summary.getStepsBack() != 0)
            object["firstStepBack"] = placeOf(summary.getFirstStepBack(), summary.getSchema());
        object["repeatedEpochs"] = summary.getRepeatedEpochs();
    }
    object["crcErrors"] = counts.crcErrors;
    object["invalidLengths"] = counts.invalidLengths;
    object["droppedBytes"] = counts.droppedBytes;
    object["undecodable"] = counts.undecodable;
    object["unknown"] = summary.getUnknown();
    object["types"] = Json::array();
    uint64_t blocks = 0;
    for (const auto& [number, type] : summary.getTypes()) {
        object["types"].push_back(typeOf(number, *type, summary.getSchema()));
        blocks += type->blocks;
    }
    object["blocks"] = blocks;
    if (const std::optional<uint64_t> usual = summary.getUsualInterval())
        addGaps(object, "outages", summary.getIntervals(), *usual);
    object["undecodableBlocks"] = placesOf(summary.getUndecodablePlaces(), summary.getSchema());
    object["unknownBlocks"] = placesOf(summary.getUnknownPlaces(), summary.getSchema());
    object["neighbours"] = neighboursOf(counts, summary.getNeighbours());
    object["damagedPlaces"] = summary.getDamagedPlaces();
    object["damage"] = Json::array();
    for (const StreamGap& gap : summary.getDamage()) {
        object["damage"].push_back({{"file", gap.file},
                                    {"offset", gap.offset},
                                    {"bytes", gap.bytes},
                                    {"crcErrors", gap.crcErrors},
                                    {"invalidLengths", gap.invalidLengths}});
    }
    // File names may not be valid UTF-8.
    out.append(object.dump(-1, ' ', true, Json::error_handler_t::replace) + "\n");
}

} // namespace tqx::tool
