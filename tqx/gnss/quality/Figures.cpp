#include "tqx/gnss/quality/Figures.h"

#include <algorithm>

namespace tqx::quality
{

namespace
{

double ratio(uint64_t part, uint64_t whole)
{
    return whole == 0 ? none : static_cast<double>(part) / static_cast<double>(whole);
}

double hoursOf(const Quality& quality)
{
    if (!quality.first || !quality.last)
        return none;
    return static_cast<double>(*quality.last - *quality.first) / 3.6e6 + quality.interval / 3600;
}

double count(uint64_t value)
{
    return static_cast<double>(value);
}

double fixShare(const Quality& quality, std::initializer_list<Fix> wanted)
{
    uint64_t epochs = 0;
    for (const FixShare& share : quality.fixes) {
        if (std::find(wanted.begin(), wanted.end(), share.fix) != wanted.end())
            epochs += share.epochs;
    }
    return ratio(epochs, quality.positions);
}

double found(const Quality& quality, FindingKind kind)
{
    const auto place = quality.findingCounts.find(kind);
    return place == quality.findingCounts.end() ? 0 : count(place->second);
}

double measured(const Quality& quality, double value)
{
    return quality.isOfPositions || quality.epochsFound == 0 ? none : value;
}

using Q = Quality;

const std::vector<Figure> all = {
    {"duration_hours", "h", "from the first to the last epoch, one interval included",
     [](const Q& q) { return hoursOf(q); }},
    {"interval", "s", "most frequent interval between epochs",
     [](const Q& q) { return q.interval; }},
    {"epochs_found", "", "epochs of measurements; of positions where there are none",
     [](const Q& q) { return count(q.epochsFound); }},
    {"epochs_expected", "", "epochs found, and those missing between the first and the last",
     [](const Q& q) { return count(q.epochsExpected); }},
    {"completeness", "", "epochs found divided by epochs expected",
     [](const Q& q) { return ratio(q.epochsFound, q.epochsExpected); }},
    {"out_of_order", "", "epochs at or before the time of the one before, which are left out",
     [](const Q& q) { return count(q.outOfOrder); }},
    {"outages", "", "intervals of at least one and a half times the usual one",
     [](const Q& q) { return count(q.outages); }},
    {"outage_seconds", "s", "by how much all of them together exceed the interval",
     [](const Q& q) { return q.outageSeconds; }},
    {"longest_outage", "s", "the longest of them", [](const Q& q) { return q.longestOutage; }},
    {"system_outages", "", "times when all satellites of a system are missing at once",
     [](const Q& q) { return measured(q, found(q, FindingKind::SystemOutage)); }},
    {"satellites", "", "mean number of satellites tracked above the mask",
     [](const Q& q) { return q.satellites.mean; }},
    {"satellites_used", "", "mean number of satellites in the position",
     [](const Q& q) { return q.satellitesUsed.mean; }},
    {"observations", "", "signals measured in all epochs, above the mask",
     [](const Q& q) { return measured(q, count(q.observations)); }},
    {"cn0", "dB-Hz", "mean C/N0 of all signals above the mask",
     [](const Q& q) { return q.cn0.mean; }},
    {"weak_signal_episodes", "", "times when C/N0 falls on all satellites, without known cause",
     [](const Q& q) { return measured(q, found(q, FindingKind::WeakSignals)); }},
    {"multipath", "m", "root mean square of the code-minus-carrier combinations of all signals",
     [](const Q& q) { return q.multipath; }},
    {"multipath_episodes", "", "times when the multipath of a satellite is conspicuous",
     [](const Q& q) { return measured(q, found(q, FindingKind::Multipath)); }},
    {"slips", "", "cycle slips of all satellites above the mask",
     [](const Q& q) { return measured(q, count(q.slips)); }},
    {"slips_per_hour", "1/h", "slips divided by duration_hours",
     [](const Q& q) { return measured(q, count(q.slips) / hoursOf(q)); }},
    {"clock_jumps", "ms", "milliseconds by which the receiver set its clock",
     [](const Q& q) { return measured(q, count(q.clockJumps)); }},
    {"positions", "", "epochs of the kind of block from which positions are taken",
     [](const Q& q) { return count(q.positions); }},
    {"positions_valid", "", "share of them that have a position",
     [](const Q& q) { return 1 - fixShare(q, {Fix::None}); }},
    {"fixed_share", "", "share of them with carrier phase ambiguities fixed",
     [](const Q& q) { return fixShare(q, {Fix::RtkFixed}); }},
    {"corrected_share", "", "share of them computed with corrections, PPP included",
     [](const Q& q) {
         return fixShare(q, {Fix::Differential, Fix::RtkFloat, Fix::RtkFixed, Fix::Ppp});
     }},
    {"pdop", "", "mean position dilution of precision", [](const Q& q) { return q.pdop.mean; }},
    {"hdop", "", "mean horizontal dilution of precision", [](const Q& q) { return q.hdop.mean; }},
    {"vdop", "", "mean vertical dilution of precision", [](const Q& q) { return q.vdop.mean; }},
    {"scatter_horizontal", "m", "distance root mean square around the mean, antenna at rest",
     [](const Q& q) { return q.scatter.horizontalRms; }},
    {"scatter_vertical", "m", "standard deviation of the height, antenna at rest",
     [](const Q& q) { return q.scatter.verticalRms; }},
    {"error_horizontal", "m", "root mean square of the distance to the reference",
     [](const Q& q) { return q.error.horizontalRms; }},
    {"error_vertical", "m", "root mean square of the height above the reference",
     [](const Q& q) { return q.error.verticalRms; }},
    {"error_horizontal_95", "m", "distance to the reference that 95 % do not exceed, to 1 %",
     [](const Q& q) { return q.error.horizontal95; }},
    {"error_vertical_95", "m", "difference in height that 95 % do not exceed, to 1 %",
     [](const Q& q) { return q.error.vertical95; }},
    {"correction_age", "s", "mean age of the corrections",
     [](const Q& q) { return q.correctionAge.mean; }},
    {"correction_age_max", "s", "largest age of the corrections",
     [](const Q& q) { return q.correctionAge.most; }},
    {"correction_gaps", "", "times when corrections were missing for more than 15 s",
     [](const Q& q) {
         return q.correctionAge.count == 0 ? none : found(q, FindingKind::Corrections);
     }},
    {"load", "%", "mean processor load", [](const Q& q) { return q.load.mean; }},
    {"load_max", "%", "largest processor load", [](const Q& q) { return q.load.most; }},
    {"temperature_max", "°C", "highest temperature of the receiver",
     [](const Q& q) { return q.temperature.most; }},
    {"restarts", "", "restarts of the receiver",
     [](const Q& q) { return q.load.count == 0 ? none : count(q.restarts); }},
    {"antenna_faults", "", "reports of an open or shorted antenna",
     [](const Q& q) { return q.load.count == 0 ? none : found(q, FindingKind::Antenna); }},
    {"receiver_errors", "", "other errors that the receiver reports",
     [](const Q& q) { return q.load.count == 0 ? none : found(q, FindingKind::ReceiverError); }},
    {"interference_seconds", "s", "time with reported interference",
     [](const Q& q) { return q.interferenceSeconds; }},
    {"blocks", "", "valid blocks", [](const Q& q) { return count(q.blocks); }},
    {"damaged_share", "", "bytes that belong to no block divided by all bytes",
     [](const Q& q) { return ratio(q.damagedBytes, q.bytes); }},
    {"damaged_places", "", "stretches of such bytes",
     [](const Q& q) { return count(q.damagedPlaces); }},
    {"crc_errors", "", "blocks with a bad checksum", [](const Q& q) { return count(q.crcErrors); }},
    {"undecodable", "", "blocks that do not decode",
     [](const Q& q) { return count(q.undecodable); }},
};

} // namespace

const std::vector<Figure>& figures()
{
    return all;
}

const Figure* findFigure(std::string_view key)
{
    const auto found = std::find_if(all.begin(), all.end(),
                                    [key](const Figure& figure) { return figure.key == key; });
    return found == all.end() ? nullptr : &*found;
}

} // namespace tqx::quality
