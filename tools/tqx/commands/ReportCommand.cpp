#include "commands/ReportCommand.h"

#include "io/Output.h"
#include "io/Target.h"
#include "io/Terminal.h"
#include "io/ToolError.h"
#include "io/Words.h"
#include "options/Numbers.h"
#include "output/ReferenceTrack.h"
#include "output/ReportText.h"
#include "tqx/gnss/quality/QualityGatherer.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/source/JoinedSource.h"
#include "tqx/log/text/PrintableText.h"

#include <CLI/StringTools.hpp>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <utility>

namespace tqx::tool
{

namespace
{

class QualityConsumer : public BlockConsumer
{
public:
    QualityConsumer(std::vector<LogReport>& reports, quality::QualityOptions options)
        : m_reports(reports), m_gatherer(std::move(options))
    {
    }

    void begin(InputStream& stream) override
    {
        stream.setGapListener([this](const StreamGap& gap) { m_gatherer.addDamage(gap); });
    }

    void take(BlockStream& stream, const Block& block) override
    {
        if (!quality::QualityGatherer::wants(block.getNumber()))
            return;
        if (const int32_t result = m_decoder.decode(block); result < 0)
            return stream.reportUndecodable(block, result);
        m_gatherer.take(m_decoder.getDecoded());
    }

    /// Damage counts even outside the selected times.
    bool canSkip() const override { return false; }

    void end(InputStream& stream) override
    {
        if (stream.hasFailed() && stream.getCounts().bytes == 0)
            return;
        m_reports.push_back({fmt::format("{}", fmt::join(stream.getNames(), ", ")),
                             m_gatherer.finish(stream.getCounts()),
                             {}});
    }

private:
    std::vector<LogReport>& m_reports;
    RecordDecoder m_decoder;
    quality::QualityGatherer m_gatherer;
};

} // namespace

ReportCommand::ReportCommand(CLI::App& program)
    : Command(
          program, "report", "Report whether the data are good",
          "  tqx report day.tqx\n"
          "  tqx report -o day.html day.tqx\n"
          "  tqx report --json day.tqx | jq .logs[0].figures\n"
          "  tqx report --reference 47.0671,15.4936,538.3 --mask 15 day.tqx\n"
          "  tqx report --require 'completeness >= 0.98 and slips_per_hour < 5' day.tqx\n"
          "  tqx report monday.tqx tuesday.tqx -o week.html\n"
          "\n"
          "Epochs found and expected, outages, satellites, C/N0, multipath, cycle slips,\n"
          "dilution of precision, scatter of the positions or their error against a reference,\n"
          "corrections, the state of the receiver and damage, each with a verdict; and\n"
          "conspicuous events with their times. Several files are compared side by side. The\n"
          "definitions of all figures, their thresholds and the keys of --json are in the\n"
          "guide, doc/report.md.\n"
          "\n"
          "A requirement is a comparison of a figure with a number (< <= > >= == !=), or\n"
          "several joined by `and` and `or`. If a log does not meet it, the exit status is 3.\n"
          "An unknown figure meets no requirement.\n")
{
    m_streams.addInputs(m_app);
    m_app
        .add_option("-o,--output", m_page,
                    "Write the report as a self-contained page for a browser")
        ->type_name("FILE");
    m_app.add_flag("--json", m_json, "Write a JSON object instead of text");
    m_app
        .add_option("--reference", m_reference,
                    "True place of the antenna: degrees and metres above the ellipsoid, or a log "
                    "with the true positions at the same times")
        ->type_name("LAT,LON,H|FILE");
    addReal(m_app, "--mask", m_mask, 0, 80, "degrees",
            "Leave out satellites below this elevation, where it is known")
        ->type_name("DEGREES");
    m_app
        .add_option("--require", m_requirement,
                    "Requirement; unless it is met, the exit status is 3")
        ->type_name("EXPRESSION");
    m_app.add_flag("--together", m_isJoined, "Read several files as one log");
}

quality::Reference ReportCommand::readReference() const
{
    quality::Reference reference;
    if (m_reference.empty())
        return reference;
    const std::vector<std::string> parts = CLI::detail::split(m_reference, ',');
    if (parts.size() == 3) {
        try {
            reference.fixed = {numbers::real(parts[0], -90, 90), numbers::real(parts[1], -180, 360),
                               numbers::real(parts[2], -1000, 20000)};
        } catch (const DataError& error) {
            throw ToolError(
                fmt::format("report: --reference {}: {}", shortened(m_reference), error.what()));
        }
        return reference;
    }
    refuseUnreadable({m_reference});
    JoinedSource source({m_reference}, {});
    BlockStream stream(source);
    reference.track = readReferenceTrack(stream);
    if (reference.track.empty()) {
        throw ToolError(
            fmt::format("report: --reference {}: no positions", shortened(m_reference)));
    }
    return reference;
}

ExitStatus ReportCommand::run()
{
    const Requirement requirement =
        m_requirement.empty() ? Requirement() : Requirement(m_requirement);
    if (!m_page.empty() && !canWritePage()) {
        throw ToolError("report: this program was built without npm and cannot write pages; text "
                        "and --json work");
    }
    m_streams.checkBefore(m_page.empty() ? "-" : m_page);
    quality::QualityOptions options;
    options.mask = m_mask;
    options.reference = readReference();

    std::vector<LogReport> reports;
    Output output;
    ExitStatus status = ExitStatus::Done;
    if (m_isJoined) {
        QualityConsumer consumer(reports, std::move(options));
        status = m_streams.read(consumer, output);
    } else {
        status = m_streams.readEach(
            [&] { return std::make_unique<QualityConsumer>(reports, options); }, output);
    }
    for (LogReport& report : reports) {
        report.failures = requirement.findFailures(report.quality);
        for (const std::string& failure : report.failures)
            words::say(fmt::format("{}: not met: {}", report.name, failure));
        if (!report.failures.empty())
            status = worse(status, ExitStatus::FellShort);
    }
    if (!m_page.empty() && !reports.empty()) {
        Output page(m_page);
        appendReportPage(page.getBuffer(), reports, m_requirement);
        page.flush();
    }
    if (m_json) {
        const nlohmann::ordered_json json = reportJson(reports, m_requirement);
        output.getBuffer().append(
            json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n");
    } else if (m_page.empty()) {
        appendReportText(output.getBuffer(), reports, outputWidth());
    }
    output.flush();
    return status;
}

} // namespace tqx::tool
