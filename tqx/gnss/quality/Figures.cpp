#include "tqx/gnss/quality/Figures.h"

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

namespace
{

double ratio(uint64_t part, uint64_t whole)
{
    return whole == 0 ? none : static_cast<double>(part) / static_cast<double>(whole);
}

double hoursOf(const AntennaQuality& quality)
{
    if (!quality.first || !quality.last)
        return none;
    const double interval = std::isnan(quality.interval) ? 0 : quality.interval;
    return static_cast<double>(*quality.last - *quality.first) / 3.6e6 + interval / 3600;
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

double found(const AntennaQuality& quality, FindingKind kind)
{
    const auto place = quality.findingCounts.find(kind);
    return place == quality.findingCounts.end() ? 0 : count(place->second);
}

double measured(const AntennaQuality& quality, double value)
{
    return quality.isOfPositions || quality.epochsFound == 0 ? none : value;
}

using Q = Quality;
using A = AntennaQuality;

const std::vector<Figure> all = {
    {"duration_hours", "h", "from the first to the last epoch, one interval included", nullptr,
     [](const A& a) { return hoursOf(a); }},
    {"interval", "s", "most frequent interval between epochs", nullptr,
     [](const A& a) { return a.interval; }},
    {"epochs_found", "", "epochs of measurements; of positions where there are none", nullptr,
     [](const A& a) { return count(a.epochsFound); }},
    {"epochs_expected", "", "epochs found, and those missing between the first and the last",
     nullptr, [](const A& a) { return count(a.epochsExpected); }},
    {"completeness", "", "epochs found divided by epochs expected", nullptr,
     [](const A& a) { return ratio(a.epochsFound, a.epochsExpected); }},
    {"out_of_order", "", "epochs at or before the time of the one before, which are left out",
     [](const Q& q) { return count(q.outOfOrder); }, nullptr},
    {"outages", "", "intervals of at least one and a half times the usual one", nullptr,
     [](const A& a) { return count(a.outages); }},
    {"outage_seconds", "s", "by how much all of them together exceed the interval", nullptr,
     [](const A& a) { return a.outageSeconds; }},
    {"longest_outage", "s", "the longest of them", nullptr,
     [](const A& a) { return a.longestOutage; }},
    {"system_outages", "", "times when all satellites of a system are missing at once", nullptr,
     [](const A& a) { return measured(a, found(a, FindingKind::SystemOutage)); }},
    {"satellites", "", "mean number of satellites tracked above the mask", nullptr,
     [](const A& a) { return a.satellites.mean; }},
    {"satellites_used", "", "mean number of satellites in the position",
     [](const Q& q) { return q.satellitesUsed.mean; }, nullptr},
    {"observations", "", "signals measured in all epochs, above the mask", nullptr,
     [](const A& a) { return measured(a, count(a.observations)); }},
    {"cn0", "dB-Hz", "mean C/N0 of all signals above the mask", nullptr,
     [](const A& a) { return a.cn0.mean; }},
    {"weak_signal_episodes", "", "times when C/N0 falls on all satellites, without known cause",
     nullptr, [](const A& a) { return measured(a, found(a, FindingKind::WeakSignals)); }},
    {"multipath", "m", "root mean square of the code-minus-carrier combinations of all signals",
     nullptr, [](const A& a) { return a.multipath; }},
    {"multipath_episodes", "", "times when the multipath of a satellite is conspicuous", nullptr,
     [](const A& a) { return measured(a, found(a, FindingKind::Multipath)); }},
    {"slips", "", "cycle slips of all satellites above the mask", nullptr,
     [](const A& a) { return measured(a, count(a.slips)); }},
    {"slips_per_hour", "1/h", "slips divided by duration_hours", nullptr,
     [](const A& a) { return measured(a, count(a.slips) / hoursOf(a)); }},
    {"clock_jumps", "ms", "milliseconds by which the receiver set its clock",
     [](const Q& q) { return measured(q, count(q.clockJumps)); }, nullptr},
    {"positions", "", "epochs of the kind of block from which positions are taken",
     [](const Q& q) { return count(q.positions); }, nullptr},
    {"positions_valid", "", "share of them that have a position",
     [](const Q& q) { return 1 - fixShare(q, {Fix::None}); }, nullptr},
    {"fixed_share", "", "share of them with carrier phase ambiguities fixed",
     [](const Q& q) { return fixShare(q, {Fix::RtkFixed}); }, nullptr},
    {"corrected_share", "", "share of them computed with corrections, PPP included",
     [](const Q& q) {
         return fixShare(q, {Fix::Differential, Fix::RtkFloat, Fix::RtkFixed, Fix::Ppp});
     },
     nullptr},
    {"pdop", "", "mean position dilution of precision", [](const Q& q) { return q.pdop.mean; },
     nullptr},
    {"hdop", "", "mean horizontal dilution of precision", [](const Q& q) { return q.hdop.mean; },
     nullptr},
    {"vdop", "", "mean vertical dilution of precision", [](const Q& q) { return q.vdop.mean; },
     nullptr},
    {"scatter_horizontal", "m", "distance root mean square around the mean, antenna at rest",
     [](const Q& q) { return q.scatter.horizontalRms; }, nullptr},
    {"scatter_vertical", "m", "standard deviation of the height, antenna at rest",
     [](const Q& q) { return q.scatter.verticalRms; }, nullptr},
    {"error_horizontal", "m", "root mean square of the distance to the reference",
     [](const Q& q) { return q.error.horizontalRms; }, nullptr},
    {"error_vertical", "m", "root mean square of the height above the reference",
     [](const Q& q) { return q.error.verticalRms; }, nullptr},
    {"error_horizontal_95", "m", "distance to the reference that 95 % do not exceed, to 1 %",
     [](const Q& q) { return q.error.horizontal95; }, nullptr},
    {"error_vertical_95", "m", "difference in height that 95 % do not exceed, to 1 %",
     [](const Q& q) { return q.error.vertical95; }, nullptr},
    {"correction_age", "s", "mean age of the corrections",
     [](const Q& q) { return q.correctionAge.mean; }, nullptr},
    {"correction_age_max", "s", "largest age of the corrections",
     [](const Q& q) { return q.correctionAge.most; }, nullptr},
    {"correction_gaps", "", "times when corrections were missing for more than 15 s",
     [](const Q& q) {
         return q.correctionAge.count == 0 ? none : found(q, FindingKind::Corrections);
     },
     nullptr},
    {"load", "%", "mean processor load", [](const Q& q) { return q.load.mean; }, nullptr},
    {"load_max", "%", "largest processor load", [](const Q& q) { return q.load.most; }, nullptr},
    {"temperature_max", "°C", "highest temperature of the receiver",
     [](const Q& q) { return q.temperature.most; }, nullptr},
    {"restarts", "", "restarts of the receiver",
     [](const Q& q) { return q.load.count == 0 ? none : count(q.restarts); }, nullptr},
    {"antenna_faults", "", "reports of an open or shorted antenna",
     [](const Q& q) { return q.load.count == 0 ? none : found(q, FindingKind::Antenna); }, nullptr},
    {"receiver_errors", "", "other errors that the receiver reports",
     [](const Q& q) { return q.load.count == 0 ? none : found(q, FindingKind::ReceiverError); },
     nullptr},
    {"interference_seconds", "s", "time with reported interference",
     [](const Q& q) { return q.interferenceSeconds; }, nullptr},
    {"blocks", "", "valid blocks", [](const Q& q) { return count(q.blocks); }, nullptr},
    {"damaged_share", "", "bytes that belong to no block divided by all bytes",
     [](const Q& q) { return ratio(q.damagedBytes, q.bytes); }, nullptr},
    {"damaged_places", "", "stretches of such bytes",
     [](const Q& q) { return count(q.damagedPlaces); }, nullptr},
    {"crc_errors", "", "blocks with a bad checksum", [](const Q& q) { return count(q.crcErrors); },
     nullptr},
    {"undecodable", "", "blocks that do not decode",
     [](const Q& q) { return count(q.undecodable); }, nullptr},
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
