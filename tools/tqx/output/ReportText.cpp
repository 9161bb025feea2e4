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

using quality::Quality;
using quality::Verdict;

constexpr size_t mostOfAKind = 10; ///< findings that are named

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
        out.append(fmt::format("  {} to {} GPS, an epoch every {:.6g} s\n",
                               dateText(*quality.first), dateText(*quality.last),
                               quality.interval));
    }
    if (!quality.hasElevations && quality.observations != 0)
        out.append("  without elevations: no mask applied\n");
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

void appendSignals(Buffer& out, const Quality& quality)
{
    if (quality.signals.empty())
        return;
    out.append("\nSignals      C/N0 dB-Hz, by elevation from                      multipath\n"
               "         all    0   10   20   30   40   50   60   70   80    m   slips\n");
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
            const std::string unit = figure.unit[0] == 0 ? "" : fmt::format(" ({})", figure.unit);
            row(figure.key + unit, [&figure](const LogReport& report) {
                return figureText(figure.value(report.quality));
            });
        }
    }
}

} // namespace

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
        appendSignals(out, report.quality);
        appendFailures(out, report);
    }
}

} // namespace tqx::tool
