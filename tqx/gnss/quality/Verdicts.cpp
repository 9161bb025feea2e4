#include "tqx/gnss/quality/Figures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

namespace
{

Grade gradeOf(double value, double good, double fair)
{
    if (std::isnan(value))
        return Grade::Unknown;
    return value <= good ? Grade::Good : value <= fair ? Grade::Fair : Grade::Poor;
}

Grade worseOf(Grade a, Grade b)
{
    return std::max(a, b);
}

double figure(const Quality& quality, const char* key)
{
    return findFigure(key)->value(quality);
}

std::string several(uint64_t count, const char* one, const char* many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

uint64_t found(const Quality& quality, FindingKind kind)
{
    const auto place = quality.findingCounts.find(kind);
    return place == quality.findingCounts.end() ? 0 : place->second;
}

Verdict completeness(const Quality& q)
{
    const double share = figure(q, "completeness");
    const uint64_t systems = found(q, FindingKind::SystemOutage);
    Verdict v{"Completeness",
              gradeOf(1 - share, 0.005, 0.05),
              {},
              "good: 99.5 % of the epochs and no outage of a system; fair: 95 %"};
    if (v.grade == Grade::Unknown) {
        v.words = "no epochs of measurements or positions";
        return v;
    }
    if (systems != 0)
        v.grade = worseOf(v.grade, Grade::Fair);
    v.words = fmt::format("{:.2f} % of {} epochs, {}", share * 100, q.epochsExpected,
                          several(q.outages, "outage", "outages"));
    if (q.outOfOrder != 0) {
        v.words +=
            fmt::format(", {} out of order left out", several(q.outOfOrder, "epoch", "epochs"));
    }
    if (systems != 0)
        v.words += fmt::format(", {} of a whole system", several(systems, "outage", "outages"));
    return v;
}

Verdict satellites(const Quality& q)
{
    Verdict v{"Satellites", Grade::Unknown, "not measured",
              "good: 12 tracked on average, PDOP 2.5; fair: 7, PDOP 5"};
    if (q.satellites.count == 0)
        return v;
    v.grade = gradeOf(-q.satellites.mean, -12, -7);
    v.words = fmt::format("{:.1f} tracked on average, at least {:.0f}", q.satellites.mean,
                          q.satellites.least);
    if (q.satellitesUsed.count != 0)
        v.words += fmt::format(", {:.1f} used", q.satellitesUsed.mean);
    if (q.pdop.count != 0) {
        v.grade = worseOf(v.grade, gradeOf(q.pdop.mean, 2.5, 5));
        v.words += fmt::format(", PDOP {:.1f}", q.pdop.mean);
    }
    return v;
}

Verdict strength(const Quality& q)
{
    Verdict v{"Signal strength", gradeOf(-q.cn0.mean, -40, -34), "not measured",
              "good: C/N0 40 dB-Hz on average, never lower on all satellites at once; fair: 34"};
    if (q.cn0.count == 0)
        return v;
    const uint64_t weak = found(q, FindingKind::WeakSignals);
    if (weak != 0)
        v.grade = worseOf(v.grade, Grade::Fair);
    v.words = fmt::format("C/N0 {:.1f} dB-Hz on average", q.cn0.mean);
    if (weak != 0)
        v.words += fmt::format(", {} on all satellites", several(weak, "drop", "drops"));
    return v;
}

Verdict multipath(const Quality& q)
{
    Verdict v{"Multipath", gradeOf(q.multipath, 0.6, 1.2),
              "no satellite with code and phase on two frequencies",
              "good: 0.6 m and no conspicuous satellite; fair: 1.2 m"};
    if (v.grade == Grade::Unknown)
        return v;
    const uint64_t standOut = found(q, FindingKind::Multipath);
    if (standOut != 0)
        v.grade = worseOf(v.grade, Grade::Fair);
    v.words = fmt::format("{:.2f} m (root mean square)", q.multipath);
    if (standOut != 0) {
        v.words +=
            fmt::format(", {}", several(standOut, "conspicuous episode", "conspicuous episodes"));
    }
    return v;
}

Verdict slips(const Quality& q)
{
    Verdict v{"Cycle slips", gradeOf(figure(q, "slips_per_hour"), 1, 10), "not measured",
              "good: 1 per hour, of all satellites; fair: 10"};
    if (v.grade != Grade::Unknown) {
        v.words = fmt::format("{}, {:.1f} per hour", several(q.slips, "slip", "slips"),
                              figure(q, "slips_per_hour"));
    }
    return v;
}

Verdict position(const Quality& q)
{
    Verdict v{"Position", Grade::Unknown, "no positions",
              "good: 99 % of the epochs have one; fair: 90 %"};
    if (q.positions == 0)
        return v;
    const double valid = figure(q, "positions_valid");
    v.grade = gradeOf(1 - valid, 0.01, 0.1);
    v.words = fmt::format("{:.2f} % of the epochs have one", valid * 100);
    if (q.error.epochs != 0) {
        v.words += fmt::format(", error {:.2f} m horizontal, {:.2f} m vertical",
                               q.error.horizontalRms, q.error.verticalRms);
    } else if (q.scatter.epochs != 0) {
        v.words += fmt::format(", scatter {:.2f} m horizontal, {:.2f} m vertical",
                               q.scatter.horizontalRms, q.scatter.verticalRms);
    } else if (q.isMoving) {
        v.words += ", the antenna moves";
    }
    return v;
}

Verdict corrections(const Quality& q)
{
    Verdict v{"Corrections", Grade::Unknown, "none used",
              "good: never older than 15 s; fair: older in one stretch"};
    if (q.correctionAge.count == 0)
        return v;
    const uint64_t gaps = found(q, FindingKind::Corrections);
    v.grade = gaps == 0 ? Grade::Good : gaps == 1 ? Grade::Fair : Grade::Poor;
    v.words = fmt::format("age {:.1f} s on average, {:.0f} s at most", q.correctionAge.mean,
                          q.correctionAge.most);
    if (gaps != 0)
        v.words += fmt::format(", {}", several(gaps, "gap", "gaps"));
    return v;
}

Verdict interference(const Quality& q)
{
    Verdict v{"Interference", Grade::Unknown, "the receiver does not say",
              "good: none reported; fair: in 1 % of the time"};
    if (std::isnan(q.interferenceSeconds))
        return v;
    const uint64_t times = found(q, FindingKind::Interference);
    const double share = q.interferenceSeconds / (figure(q, "duration_hours") * 3600);
    v.grade = times == 0 ? Grade::Good : share <= 0.01 ? Grade::Fair : Grade::Poor;
    v.words = times == 0 ? "none reported"
                         : fmt::format("{}, {:.0f} s in all", several(times, "episode", "episodes"),
                                       q.interferenceSeconds);
    return v;
}

Verdict receiver(const Quality& q)
{
    Verdict v{"Receiver", Grade::Unknown, "it does not say",
              "good: no error, load up to 80 %; fair: load up to 95 % or one error"};
    if (q.load.count == 0)
        return v;
    const uint64_t antenna = found(q, FindingKind::Antenna);
    const uint64_t others = found(q, FindingKind::ReceiverError) + q.restarts;
    const uint64_t errors = antenna + others;
    v.grade = worseOf(gradeOf(q.load.most, 80, 95), gradeOf(static_cast<double>(errors), 0, 1));
    v.words = fmt::format("load up to {:.0f} %", q.load.most);
    if (q.temperature.count != 0)
        v.words += fmt::format(", {:.0f} °C at most", q.temperature.most);
    if (antenna != 0)
        v.words += fmt::format(", {}", several(antenna, "antenna fault", "antenna faults"));
    if (others != 0)
        v.words += fmt::format(", {}", several(others, "other error", "other errors"));
    if (errors == 0)
        v.words += ", no errors";
    return v;
}

Verdict damage(const Quality& q)
{
    const double share = figure(q, "damaged_share");
    Verdict v{"Damage", gradeOf(share, 0, 0.001), "no bytes",
              "good: no byte lost, all blocks decode; fair: up to 0.1 % of the bytes"};
    if (v.grade == Grade::Unknown)
        return v;
    if (q.undecodable != 0)
        v.grade = worseOf(v.grade, Grade::Fair);
    v.words = q.damagedPlaces == 0
                  ? "none"
                  : fmt::format("{} in {}", several(q.damagedBytes, "byte lost", "bytes lost"),
                                several(q.damagedPlaces, "place", "places"));
    if (q.undecodable != 0) {
        v.words +=
            fmt::format(", {} that do not decode", several(q.undecodable, "block", "blocks"));
    }
    return v;
}

} // namespace

const char* nameOf(Grade grade)
{
    constexpr const char* names[] = {"unknown", "good", "fair", "poor"};
    return names[static_cast<size_t>(grade)];
}

std::vector<Verdict> judge(const Quality& quality)
{
    return {completeness(quality), satellites(quality), strength(quality),    multipath(quality),
            slips(quality),        position(quality),   corrections(quality), interference(quality),
            receiver(quality),     damage(quality)};
}

} // namespace tqx::quality
