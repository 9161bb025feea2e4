#include "output/ReportText.h"

#include "tqx/gnss/quality/Figures.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace tqx::tool
{

namespace
{

using Json = nlohmann::ordered_json;
using quality::AntennaQuality;
using quality::Quality;

/// Six decimals are enough for all figures; unknown ones are null.
Json numberOf(double value)
{
    if (std::isnan(value) || std::isinf(value))
        return nullptr;
    if (value == std::floor(value) && std::fabs(value) < 1e15)
        return static_cast<int64_t>(value);
    return std::round(value * 1e6) / 1e6;
}

Json timeOf(GnssMillis time)
{
    return {{"week", time / millisPerWeek},
            {"tow", static_cast<double>(time % millisPerWeek) / 1000},
            {"date", dateText(time)}};
}

std::string codeOf(const SignalCode& code)
{
    return {code.band, code.attribute};
}

Json findingsOf(const Quality& quality)
{
    Json list = Json::array();
    for (const quality::Finding& finding : quality.findings) {
        list.push_back({{"kind", nameOf(finding.kind)},
                        {"start", timeOf(finding.start)},
                        {"end", timeOf(finding.end)},
                        {"subject", finding.subject},
                        {"value", numberOf(finding.value)},
                        {"text", finding.text},
                        {"antenna", finding.antenna}});
    }
    return list;
}

Json signalsOf(const AntennaQuality& quality)
{
    Json list = Json::array();
    for (const quality::SignalQuality& signal : quality.signals) {
        Json byElevation = Json::array();
        for (const quality::Spread& step : signal.cn0ByElevation)
            byElevation.push_back(numberOf(step.mean));
        list.push_back({{"system", std::string(1, signal.system)},
                        {"signal", codeOf(signal.code)},
                        {"observations", signal.observations},
                        {"cn0", numberOf(signal.cn0.mean)},
                        {"cn0_deviation", numberOf(signal.cn0.deviation)},
                        {"cn0_by_elevation", std::move(byElevation)},
                        {"multipath", numberOf(signal.multipath)},
                        {"multipath_epochs", signal.multipathEpochs},
                        {"slips", signal.slips}});
    }
    return list;
}

Json satellitesOf(const AntennaQuality& quality)
{
    Json list = Json::array();
    for (const quality::SatelliteQuality& each : quality.satelliteList) {
        list.push_back({{"satellite", each.satellite.text()},
                        {"epochs", each.epochs},
                        {"highest", numberOf(each.highest)},
                        {"cn0", numberOf(each.cn0)},
                        {"multipath", numberOf(each.multipath)},
                        {"slips", each.slips}});
    }
    return list;
}

Json slipsOf(const AntennaQuality& quality)
{
    Json list = Json::array();
    for (const quality::Slip& slip : quality.slipList) {
        list.push_back({{"time", timeOf(slip.time)},
                        {"satellite", slip.satellite.text()},
                        {"signals", slip.signals},
                        {"loss_of_lock", slip.isLossOfLock},
                        {"jump", numberOf(slip.jump)}});
    }
    return list;
}

Json fixesOf(const Quality& quality)
{
    constexpr const char* names[] = {"none",      "standalone", "differential", "rtk_float",
                                     "rtk_fixed", "ppp",        "estimated",    "manual"};
    Json object = Json::object();
    for (const quality::FixShare& share : quality.fixes)
        object[names[static_cast<size_t>(share.fix)]] = share.epochs;
    return object;
}

Json countsOf(const AntennaQuality& antenna)
{
    Json counts = Json::object();
    for (const auto& [kind, count] : antenna.findingCounts)
        counts[nameOf(kind)] = count;
    return counts;
}

/// Observations by how the elevations of their satellites are known.
Json elevationsOf(const Quality& quality)
{
    Json sources = Json::object();
    for (size_t i = 0; i < quality.elevationSources.size(); ++i) {
        sources[nameOf(static_cast<quality::ElevationSource>(i))] = quality.elevationSources[i];
    }
    return sources;
}

Json otherAntennasOf(const Quality& quality)
{
    Json list = Json::array();
    for (const AntennaQuality& antenna : quality.otherAntennas) {
        Json figures = Json::object();
        for (const quality::Figure& figure : quality::figures()) {
            if (figure.ofAntenna)
                figures[figure.key] = numberOf(figure.ofAntenna(antenna));
        }
        list.push_back({{"antenna", antenna.number},
                        {"figures", std::move(figures)},
                        {"finding_counts", countsOf(antenna)},
                        {"signals", signalsOf(antenna)},
                        {"satellites", satellitesOf(antenna)},
                        {"slips", slipsOf(antenna)}});
    }
    return list;
}

Json reportOf(const LogReport& report)
{
    const Quality& quality = report.quality;
    Json object = {{"name", report.name}};
    object["first"] = quality.first ? timeOf(*quality.first) : Json();
    object["last"] = quality.last ? timeOf(*quality.last) : Json();
    object["marker"] = quality.marker;
    object["receiver"] = quality.receiver;
    object["antenna"] = quality.antenna;
    object["position_source"] = quality.positionSource;
    object["moving"] = quality.isMoving;
    object["mask_applied"] = quality.hasElevations;
    object["elevation_sources"] = elevationsOf(quality);
    Json& figures = object["figures"] = Json::object();
    for (const quality::Figure& figure : quality::figures())
        figures[figure.key] = numberOf(figure.value(quality));
    Json& verdicts = object["verdicts"] = Json::array();
    for (const quality::Verdict& verdict : quality::judge(quality)) {
        verdicts.push_back({{"area", verdict.area},
                            {"grade", nameOf(verdict.grade)},
                            {"words", verdict.words},
                            {"threshold", verdict.threshold}});
    }
    object["findings"] = findingsOf(quality);
    object["finding_counts"] = countsOf(quality);
    object["fixes"] = fixesOf(quality);
    object["signals"] = signalsOf(quality);
    object["satellites"] = satellitesOf(quality);
    object["slips"] = slipsOf(quality);
    object["other_antennas"] = otherAntennasOf(quality);
    object["failures"] = report.failures;
    return object;
}

} // namespace

nlohmann::ordered_json reportJson(const std::vector<LogReport>& reports,
                                  const std::string& requirement)
{
    Json object = {{"report", 1}};
    object["requirement"] = requirement.empty() ? Json() : Json(requirement);
    Json& logs = object["logs"] = Json::array();
    for (const LogReport& report : reports)
        logs.push_back(reportOf(report));
    return object;
}

} // namespace tqx::tool
