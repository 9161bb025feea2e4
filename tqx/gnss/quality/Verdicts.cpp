#include "tqx/gnss/quality/Figures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

// doc/report.md gives the reasons for the thresholds.
namespace tqx::quality
{

namespace
{

/// The judgement of an area: its grade is the worst of all comparisons.
class Judgement
{
public:
    /// Small values are good. NaN is not compared.
    void compare(double value, double good, double fair)
    {
        if (!std::isnan(value))
            noBetterThan(value <= good ? Grade::Good : value <= fair ? Grade::Fair : Grade::Poor);
    }

    /// Large values are good.
    void compareLeast(double value, double good, double fair) { compare(-value, -good, -fair); }

    void noBetterThan(Grade grade) { m_grade = std::max(m_grade, grade); }

    template<typename... Values>
    void say(fmt::format_string<Values...> text, Values&&... values)
    {
        m_words += m_words.empty() ? "" : ", ";
        m_words += fmt::format(text, std::forward<Values>(values)...);
    }

    /// "2 gaps"
    void sayCount(uint64_t count, const char* one, const char* many)
    {
        say("{} {}", count, count == 1 ? one : many);
    }

    /// Something that should not occur: it is named when it does, and the grade is fair at best.
    void fault(uint64_t count, const char* one, const char* many)
    {
        if (count == 0)
            return;
        noBetterThan(Grade::Fair);
        sayCount(count, one, many);
    }

    Grade getGrade() const { return m_grade; }
    const std::string& getWords() const { return m_words; }

private:
    Grade m_grade = Grade::Unknown;
    std::string m_words;
};

double figure(const Quality& quality, const char* key)
{
    return findFigure(key)->value(quality);
}

uint64_t found(const AntennaQuality& quality, FindingKind kind)
{
    const auto place = quality.findingCounts.find(kind);
    return place == quality.findingCounts.end() ? 0 : place->second;
}

void judgeCompleteness(const Quality& q, Judgement& j)
{
    const double share = figure(q, "completeness");
    if (std::isnan(share))
        return;
    j.compareLeast(share, 0.995, 0.95);
    j.say("{:.2f} % of {} epochs", share * 100, q.epochsExpected);
    j.sayCount(q.outages, "outage", "outages");
    if (q.outOfOrder != 0)
        j.say("{} {} out of order left out", q.outOfOrder, q.outOfOrder == 1 ? "epoch" : "epochs");
    j.fault(found(q, FindingKind::SystemOutage), "outage of a whole system",
            "outages of a whole system");
    for (const AntennaQuality& other : q.otherAntennas) {
        if (other.epochsFound >= q.epochsFound)
            continue;
        const double part = findFigure("completeness")->ofAntenna(other);
        j.compareLeast(part, 0.995, 0.95);
        j.say("antenna {}: {:.2f} %", other.number, part * 100);
    }
}

void judgeSatellites(const AntennaQuality& a, Judgement& j)
{
    if (a.satellites.count == 0)
        return;
    j.compareLeast(a.satellites.mean, 7, 5);
    j.say("{:.1f} tracked on average", a.satellites.mean);
    j.say("at least {:.0f}", a.satellites.least);
}

void judgeGeometry(const Quality& q, Judgement& j)
{
    if (q.satellites.count == 0)
        return;
    if (q.satellitesUsed.count != 0)
        j.say("{:.1f} used", q.satellitesUsed.mean);
    if (q.pdop.count != 0) {
        j.compare(q.pdop.mean, 2.5, 5);
        j.say("PDOP {:.1f}", q.pdop.mean);
    }
}

void judgeStrength(const AntennaQuality& a, Judgement& j)
{
    if (a.cn0.count == 0)
        return;
    j.compareLeast(a.cn0.mean, 40, 34);
    j.say("C/N0 {:.1f} dB-Hz on average", a.cn0.mean);
    j.fault(found(a, FindingKind::WeakSignals), "drop on all satellites",
            "drops on all satellites");
}

void judgeMultipath(const AntennaQuality& a, Judgement& j)
{
    if (std::isnan(a.multipath))
        return;
    j.compare(a.multipath, 0.6, 1.2);
    j.say("{:.2f} m (root mean square)", a.multipath);
    j.fault(found(a, FindingKind::Multipath), "conspicuous episode", "conspicuous episodes");
}

void judgeSlips(const AntennaQuality& a, Judgement& j)
{
    const double perHour = findFigure("slips_per_hour")->ofAntenna(a);
    if (std::isnan(perHour))
        return;
    j.compare(perHour, 1, 10);
    j.sayCount(a.slips, "slip", "slips");
    j.say("{:.1f} per hour", perHour);
}

void judgePosition(const Quality& q, Judgement& j)
{
    if (q.positions == 0)
        return;
    const double valid = figure(q, "positions_valid");
    j.compareLeast(valid, 0.99, 0.9);
    j.say("{:.2f} % of the epochs have one", valid * 100);
    if (q.error.epochs != 0) {
        j.say("error {:.2f} m horizontal", q.error.horizontalRms);
        j.say("{:.2f} m vertical", q.error.verticalRms);
    } else if (q.scatter.epochs != 0) {
        j.say("scatter {:.2f} m horizontal", q.scatter.horizontalRms);
        j.say("{:.2f} m vertical", q.scatter.verticalRms);
    } else if (q.isMoving) {
        j.say("the antenna moves");
    }
}

void judgeCorrections(const Quality& q, Judgement& j)
{
    if (q.correctionAge.count == 0)
        return;
    const uint64_t gaps = found(q, FindingKind::Corrections);
    j.compare(static_cast<double>(gaps), 0, 1);
    j.say("age {:.1f} s on average", q.correctionAge.mean);
    j.say("{:.0f} s at most", q.correctionAge.most);
    if (gaps != 0)
        j.sayCount(gaps, "gap", "gaps");
}

void judgeInterference(const Quality& q, Judgement& j)
{
    if (std::isnan(q.interferenceSeconds))
        return;
    const uint64_t times = found(q, FindingKind::Interference);
    if (times == 0) {
        j.noBetterThan(Grade::Good);
        return j.say("none reported");
    }
    j.compare(q.interferenceSeconds / (figure(q, "duration_hours") * 3600), 0, 0.01);
    j.fault(times, "episode", "episodes");
    j.say("{:.0f} s in all", q.interferenceSeconds);
}

void judgeReceiver(const Quality& q, Judgement& j)
{
    if (q.load.count == 0)
        return;
    const uint64_t antenna = found(q, FindingKind::Antenna);
    const uint64_t others = found(q, FindingKind::ReceiverError) + q.restarts;
    j.compare(q.load.most, 80, 95);
    j.compare(static_cast<double>(antenna + others), 0, 1);
    j.say("load up to {:.0f} %", q.load.most);
    if (q.temperature.count != 0)
        j.say("{:.0f} °C at most", q.temperature.most);
    j.fault(antenna, "antenna fault", "antenna faults");
    j.fault(others, "other error", "other errors");
    if (antenna + others == 0)
        j.say("no errors");
}

void judgeDamage(const Quality& q, Judgement& j)
{
    const double share = figure(q, "damaged_share");
    if (std::isnan(share))
        return;
    j.compare(share, 0, 0.001);
    if (q.damagedPlaces == 0) {
        j.say("none");
    } else {
        j.say("{} {} lost in {} {}", q.damagedBytes, q.damagedBytes == 1 ? "byte" : "bytes",
              q.damagedPlaces, q.damagedPlaces == 1 ? "place" : "places");
    }
    j.fault(q.undecodable, "block that does not decode", "blocks that do not decode");
}

/// An area judges what each antenna has, the rest of the log, or both.
struct Area {
    const char* name;
    const char* threshold;
    const char* unknown;
    void (*judgeAntenna)(const AntennaQuality& antenna, Judgement& judgement);
    void (*judgeLog)(const Quality& quality, Judgement& judgement);
};

constexpr Area areas[] = {
    {"Completeness", "good: 99.5 % of the epochs and no outage of a system; fair: 95 %",
     "no epochs of measurements or positions", nullptr, judgeCompleteness},
    {"Satellites", "good: 7 tracked on average, PDOP 2.5; fair: 5, PDOP 5", "not measured",
     judgeSatellites, judgeGeometry},
    {"Signal strength",
     "good: C/N0 40 dB-Hz on average, never lower on all satellites at once; fair: 34",
     "not measured", judgeStrength, nullptr},
    {"Multipath", "good: 0.6 m and no conspicuous satellite; fair: 1.2 m",
     "no satellite with code and phase on two frequencies", judgeMultipath, nullptr},
    {"Cycle slips", "good: 1 per hour, of all satellites; fair: 10", "not measured", judgeSlips,
     nullptr},
    {"Position", "good: 99 % of the epochs have one; fair: 90 %", "no positions", nullptr,
     judgePosition},
    {"Corrections", "good: never older than 15 s; fair: older in one stretch", "none used", nullptr,
     judgeCorrections},
    {"Interference", "good: none reported; fair: in 1 % of the time", "the receiver does not say",
     nullptr, judgeInterference},
    {"Receiver", "good: no error, load up to 80 %; fair: load up to 95 % or one error",
     "it does not say", nullptr, judgeReceiver},
    {"Damage", "good: no byte lost, all blocks decode; fair: up to 0.1 % of the bytes", "no bytes",
     nullptr, judgeDamage},
};

/// Other antennas are only mentioned where they make the grade worse.
Verdict judge(const Area& area, const Quality& quality)
{
    Judgement all;
    if (area.judgeAntenna)
        area.judgeAntenna(quality, all);
    if (area.judgeLog)
        area.judgeLog(quality, all);
    for (const AntennaQuality& other : quality.otherAntennas) {
        if (!area.judgeAntenna)
            break;
        Judgement its;
        area.judgeAntenna(other, its);
        if (its.getGrade() > std::max(all.getGrade(), Grade::Good))
            all.say("antenna {}: {}", other.number, its.getWords());
        all.noBetterThan(its.getGrade());
    }
    const bool isKnown = all.getGrade() != Grade::Unknown;
    return {area.name, all.getGrade(), isKnown ? all.getWords() : area.unknown, area.threshold};
}

} // namespace

const char* nameOf(Grade grade)
{
    constexpr const char* names[] = {"unknown", "good", "fair", "poor"};
    return names[static_cast<size_t>(grade)];
}

std::vector<Verdict> judge(const Quality& quality)
{
    std::vector<Verdict> verdicts;
    for (const Area& area : areas)
        verdicts.push_back(judge(area, quality));
    return verdicts;
}

} // namespace tqx::quality
