#include "output/ReportText.h"

#include "tqx/gnss/quality/Figures.h"

#ifdef TQX_REPORT_PAGE
#include "ReportAssets.h"
#endif

#include <nlohmann/json.hpp>

#include <cmath>

namespace tqx::tool
{

#ifdef TQX_REPORT_PAGE

namespace
{

using Json = nlohmann::ordered_json;

Json rounded(float value)
{
    return std::round(double{value} * 1e3) / 1e3;
}

/// Times are seconds since the first one of the log, to keep them short.
Json seriesOf(const quality::Series& series, GnssMillis origin)
{
    Json times = Json::array();
    Json least = Json::array();
    Json most = Json::array();
    Json mean = Json::array();
    bool isRange = false;
    for (const quality::SeriesPoint& point : series.points) {
        times.push_back((static_cast<int64_t>(point.time) - static_cast<int64_t>(origin)) / 1000);
        least.push_back(rounded(point.least));
        most.push_back(rounded(point.most));
        mean.push_back(rounded(point.mean));
        isRange = isRange || point.least != point.most;
    }
    Json object = {{"name", series.name},
                   {"width", series.width / 1000},
                   {"t", std::move(times)},
                   {"mean", std::move(mean)}};
    if (isRange) {
        object["min"] = std::move(least);
        object["max"] = std::move(most);
    }
    return object;
}

Json picturesOf(const quality::Quality& quality)
{
    const GnssMillis origin = quality.first.value_or(0) / 1000 * 1000;
    Json plots = Json::array();
    for (const quality::Plot& plot : quality.plots) {
        Json list = Json::array();
        for (const quality::Series& series : plot.series)
            list.push_back(seriesOf(series, origin));
        plots.push_back({{"key", plot.key},
                         {"title", plot.title},
                         {"unit", plot.unit},
                         {"series", std::move(list)}});
    }
    Json sky = Json::array();
    for (const quality::SkyTrack& track : quality.sky) {
        Json points = Json::array();
        for (const quality::SkyPoint& point : track.points) {
            points.push_back((static_cast<int64_t>(point.time) - static_cast<int64_t>(origin)) /
                             1000);
            points.push_back(std::round(double{point.azimuth} * 10) / 10);
            points.push_back(std::round(double{point.elevation} * 10) / 10);
        }
        sky.push_back({{"satellite", track.satellite.text()}, {"points", std::move(points)}});
    }
    constexpr uint64_t toUnixEpoch = 315964800; // seconds from 1970-01-01 to 1980-01-06
    return {{"origin", origin / 1000 + toUnixEpoch},
            {"plots", std::move(plots)},
            {"sky", std::move(sky)}};
}

/// Escapes what a script element must not contain.
void appendEscaped(Buffer& out, const std::string& json)
{
    for (const char c : json) {
        if (c == '<') {
            out.append("\\u003c");
        } else {
            out.append(c);
        }
    }
}

} // namespace

bool canWritePage()
{
    return true;
}

void appendReportPage(Buffer& out, const std::vector<LogReport>& reports,
                      const std::string& requirement)
{
    Json data = reportJson(reports, requirement);
    Json& definitions = data["definitions"] = Json::array();
    for (const quality::Figure& figure : quality::figures()) {
        definitions.push_back({{"key", figure.key},
                               {"unit", figure.unit},
                               {"definition", figure.definition},
                               {"of_antenna", figure.ofAntenna != nullptr}});
    }
    for (size_t i = 0; i < reports.size(); ++i) {
        data["logs"][i]["elevations"] = elevationWords(reports[i].quality);
        data["logs"][i]["pictures"] = picturesOf(reports[i].quality);
    }
    const std::string_view page = assets::page();
    const std::string_view mark = "@DATA@";
    const size_t at = page.find(mark);
    out.append(page.substr(0, at));
    appendEscaped(out, data.dump(-1, ' ', false, Json::error_handler_t::replace));
    out.append(page.substr(at + mark.size()));
}

#else

bool canWritePage()
{
    return false;
}

void appendReportPage(Buffer&, const std::vector<LogReport>&, const std::string&) {}

#endif

} // namespace tqx::tool
