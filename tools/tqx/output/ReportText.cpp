#include "output/ReportText.h"

#include "tqx/gnss/quality/Figures.h"
#include "tqx/log/text/PrintableText.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tqx::tool
{

namespace
{

using quality::AntennaQuality;
using quality::Quality;
using quality::Verdict;

constexpr size_t mostOfAKind = 10; ///< findings that are named

std::string labelOf(const quality::Figure& figure)
{
    return figure.unit[0] == 0 ? figure.key : fmt::format("{} ({})", figure.key, figure.unit);
}

std::string cellOf(double value, int decimals)
{
    return std::isnan(value) ? "-" : fmt::format("{:.{}f}", value, decimals);
}

void appendHead(Buffer& out, const LogReport& report)
{
    const Quality& quality = report.quality;
    out.append(fmt::format("{}\n", printable(report.name)));
    std::string names;
    for (const std::string* name : {&quality.marker, &quality.receiver, &quality.antenna}) {
        if (!name->empty())
            names += (names.empty() ? "" : ", ") + *name;
    }
    if (!names.empty())
        out.append(fmt::format("  {}\n", printable(names)));
    if (quality.first) {
        const std::string interval =
            std::isnan(quality.interval)
                ? ""
                : fmt::format(", an epoch every {:.6g} s", quality.interval);
        out.append(fmt::format("  {} to {} GPS{}\n", dateText(*quality.first),
                               dateText(*quality.last), interval));
    }
    if (const std::string elevations = elevationWords(quality); !elevations.empty())
        out.append(fmt::format("  {}\n", elevations));
}

void appendVerdicts(Buffer& out, const Quality& quality)
{
    out.append("\n");
    for (const Verdict& verdict : quality::judge(quality)) {
        out.append(
            fmt::format("  {:<8} {:<16} {}\n",
                        verdict.grade == quality::Grade::Unknown ? "-" : nameOf(verdict.grade),
                        verdict.area, verdict.words));
    }
}

void appendFindings(Buffer& out, const Quality& quality)
{
    if (quality.findings.empty()) {
        if (quality.first && quality.damagedPlaces == 0)
            out.append("\nNothing conspicuous was found.\n");
        return;
    }
    out.append("\nFindings:\n");
    std::map<quality::FindingKind, uint64_t> named;
    for (const quality::Finding& finding : quality.findings) {
        if (named[finding.kind]++ >= mostOfAKind)
            continue;
        const std::string length =
            finding.end == finding.start
                ? ""
                : fmt::format("{:.6g} s", static_cast<double>(finding.end - finding.start) * 1e-3);
        out.append(fmt::format("  {}  {:>9}  {}\n", dateText(finding.start), length,
                               printable(finding.text)));
    }
    for (const auto& [kind, count] : quality.findingCounts) {
        if (count > mostOfAKind) {
            out.append(
                fmt::format("  ... and {} more of kind {}\n", count - mostOfAKind, nameOf(kind)));
        }
    }
}

/// What the antennas have each, side by side.
void appendAntennas(Buffer& out, const Quality& quality)
{
    if (quality.otherAntennas.empty())
        return;
    out.append(fmt::format("\n{:<24} {:>12}", "Antennas", "main"));
    for (const AntennaQuality& other : quality.otherAntennas)
        out.append(fmt::format(" {:>12}", fmt::format("antenna {}", other.number)));
    out.append('\n');
    for (const quality::Figure& figure : quality::figures()) {
        if (!figure.ofAntenna)
            continue;
        out.append(
            fmt::format("  {:<22} {:>12}", labelOf(figure), figureText(figure.value(quality))));
        for (const AntennaQuality& other : quality.otherAntennas)
            out.append(fmt::format(" {:>12}", figureText(figure.ofAntenna(other))));
        out.append('\n');
    }
}

void appendSignals(Buffer& out, const AntennaQuality& quality)
{
    if (quality.signals.empty())
        return;
    out.append(
        fmt::format("\n{:<11}  C/N0 dB-Hz, by elevation from                      multipath\n",
                    quality.number == 0 ? "Signals" : fmt::format("Antenna {}", quality.number)));
    out.append("         all    0   10   20   30   40   50   60   70   80    m   slips\n");
    for (const quality::SignalQuality& signal : quality.signals) {
        out.append(fmt::format("  {} {}{} {:>6}", signal.system, signal.code.band,
                               signal.code.attribute, cellOf(signal.cn0.mean, 1)));
        for (const quality::Spread& step : signal.cn0ByElevation)
            out.append(fmt::format(" {:>4}", cellOf(step.mean, 0)));
        out.append(fmt::format(" {:>6} {:>6}\n", cellOf(signal.multipath, 2), signal.slips));
    }
}

void appendFailures(Buffer& out, const LogReport& report)
{
    if (report.failures.empty())
        return;
    out.append("\nRequirement not met:\n");
    for (const std::string& failure : report.failures)
        out.append(fmt::format("  {}\n", failure));
}

/// A table with one row per name and one column per report, in pieces where it is too wide.
void appendColumns(Buffer& out, const std::vector<LogReport>& reports, size_t width)
{
    constexpr size_t labelWidth = 24;
    constexpr size_t cellWidth = 16;
    const size_t fitting = std::max<size_t>(1, (width - labelWidth) / (cellWidth + 1));
    const auto cut = [](const std::string& text) {
        return text.size() <= cellWidth ? text : ".." + text.substr(text.size() - cellWidth + 2);
    };
    for (size_t first = 0; first < reports.size(); first += fitting) {
        const size_t last = std::min(first + fitting, reports.size());
        const auto row = [&](const std::string& label, const auto& cell) {
            out.append(fmt::format("{:<{}}", label, labelWidth));
            for (size_t i = first; i < last; ++i)
                out.append(fmt::format(" {:>{}}", cell(reports[i]), cellWidth));
            out.append('\n');
        };
        if (first != 0)
            out.append('\n');
        row("", [&](const LogReport& report) { return cut(printable(report.name)); });
        const size_t areas = quality::judge(reports.front().quality).size();
        for (size_t area = 0; area < areas; ++area) {
            row(quality::judge(reports.front().quality)[area].area,
                [area](const LogReport& report) {
                    return std::string(nameOf(quality::judge(report.quality)[area].grade));
                });
        }
        out.append('\n');
        for (const quality::Figure& figure : quality::figures()) {
            row(labelOf(figure), [&figure](const LogReport& report) {
                return figureText(figure.value(report.quality));
            });
        }
    }
}

} // namespace

std::string elevationWords(const Quality& quality)
{
    uint64_t total = 0;
    for (const uint64_t observations : quality.elevationSources)
        total += observations;
    if (total == 0)
        return {};
    if (!quality.hasElevations)
        return "without elevations: no mask applied";
    constexpr const char* names[] = {"not known", "from blocks on visibility",
                                     "from blocks on channels", "computed from ephemerides"};
    std::string words;
    for (const size_t source : {1U, 2U, 3U, 0U}) {
        const uint64_t observations = quality.elevationSources[source];
        if (observations == 0)
            continue;
        words += words.empty() ? "elevations " : ", ";
        words += names[source];
        if (observations != total) {
            // Less than all is never 100 %, and more than none never 0.
            const double share =
                std::clamp(100.0 * static_cast<double>(observations) / static_cast<double>(total),
                           0.01, 99.99);
            words += fmt::format(" ({:.2f} %)", share);
        }
    }
    return words;
}

std::string figureText(double value)
{
    if (std::isnan(value))
        return "-";
    if (value == std::floor(value) && std::fabs(value) < 1e15)
        return fmt::format("{:.0f}", value);
    return std::fabs(value) >= 100 ? fmt::format("{:.1f}", value) : fmt::format("{:.4g}", value);
}

void appendReportText(Buffer& out, const std::vector<LogReport>& reports, size_t width)
{
    if (reports.size() > 1) {
        appendColumns(out, reports, width);
        for (const LogReport& report : reports) {
            out.append('\n');
            appendHead(out, report);
            appendFindings(out, report.quality);
            appendFailures(out, report);
        }
        return;
    }
    for (const LogReport& report : reports) {
        appendHead(out, report);
        appendVerdicts(out, report.quality);
        appendFindings(out, report.quality);
        appendAntennas(out, report.quality);
        appendSignals(out, report.quality);
        for (const AntennaQuality& other : report.quality.otherAntennas)
            appendSignals(out, other);
        appendFailures(out, report);
    }
}

} // namespace tqx::tool
