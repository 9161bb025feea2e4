#include "ReportRuns.h"
#include "tqx/gnss/quality/Figures.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

namespace
{

using nlohmann::json;

TEST(Report, CompletenessFollowsFromTheOutages)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 600 --fault outage@100+30 --fault outage@200+3");
    const json figures = reportsOf(runs, "log.tqx")[0]["figures"];
    EXPECT_EQ(figures["epochs_found"], 567);
    EXPECT_EQ(figures["epochs_expected"], 600);
    EXPECT_NEAR(figures["completeness"], 567.0 / 600, 1e-6);
    EXPECT_EQ(figures["outages"], 2);
    EXPECT_EQ(figures["outage_seconds"], 33);
    EXPECT_EQ(figures["longest_outage"], 30);
}

/// Epochs in which nothing is measured, as in a tunnel, are missing.
TEST(Report, EmptyEpochsAreAnOutage)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 120");
    rewrite(runs, "log.tqx", "tunnel.tqx", [](const std::string& name, json& fields) {
        const unsigned second = fields["TOW"].get<unsigned>() / 1000 - 216000;
        if (name == "MeasEpoch2" && ((second >= 30 && second < 50) || second >= 110)) {
            fields["N1"] = 0;
            fields["Type1"] = json::array();
        }
    });
    const json report = reportsOf(runs, "tunnel.tqx")[0];
    EXPECT_EQ(report["figures"]["epochs_found"], 90);
    EXPECT_EQ(report["figures"]["epochs_expected"], 120);
    EXPECT_EQ(report["figures"]["outages"], 2);
    EXPECT_EQ(report["figures"]["outage_seconds"], 30);
    EXPECT_EQ(report["figures"]["longest_outage"], 20);
    EXPECT_EQ(report["finding_counts"]["system_outage"], 0);
    EXPECT_EQ(report["finding_counts"]["slip"], 0);
}

/// Another rate is no outage, and what is appended from another start is no slip.
TEST(Report, FollowsChangesOfTheRate)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o a.tqx --duration 300");
    runs.expectRun("simulate -o b.tqx --start 2400:216300 --duration 1200 --rate 0.1");
    runs.expectRun("simulate -o c.tqx --start 2400:217500 --duration 100 --rate 5");
    const json report = reportsOf(runs, "--together a.tqx b.tqx c.tqx")[0];
    EXPECT_EQ(report["figures"]["epochs_found"], 300 + 120 + 500);
    EXPECT_EQ(report["figures"]["epochs_expected"], 300 + 120 + 500);
    EXPECT_EQ(report["figures"]["restarts"], 2);
    EXPECT_EQ(report["finding_counts"]["outage"], 0);
}

/// Time that runs back is said, and does not count twice.
TEST(Report, EpochsOutOfOrderAreLeftOut)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o late.tqx --start 2400:216300 --duration 60");
    runs.expectRun("simulate -o early.tqx --duration 60");
    const json figures = reportsOf(runs, "--together late.tqx early.tqx")[0]["figures"];
    EXPECT_EQ(figures["epochs_found"], 60);
    EXPECT_EQ(figures["out_of_order"], 60);
}

TEST(Report, DamageLosesEpochsButMakesNoSlips)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 300 --damage");
    const json info = json::parse(runs.expectRun("info --json -q log.tqx"));
    const json figures = reportsOf(runs, "log.tqx")[0]["figures"];
    EXPECT_EQ(figures["crc_errors"], info["crcErrors"]);
    EXPECT_EQ(figures["blocks"], info["blocks"]);
    EXPECT_GT(figures["damaged_places"], 10);
    EXPECT_LT(figures["completeness"], 1);
    EXPECT_EQ(figures["slips"], 0);
}

/// Against the true place the error is the scatter and the offset of the mean; against one ten
/// metres above it is ten metres in height.
TEST(Report, ErrorIsAgainstTheReference)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 600 --position 47.5,15.5,400");
    const json near = reportsOf(runs, "--reference 47.5,15.5,400 log.tqx")[0]["figures"];
    EXPECT_LT(near["error_horizontal"], 2);
    EXPECT_GE(near["error_horizontal"].get<double>() + 1e-6, near["scatter_horizontal"]);
    const json above = reportsOf(runs, "--reference 47.5,15.5,410 log.tqx")[0]["figures"];
    EXPECT_NEAR(above["error_vertical"], 10, 1.5);
    EXPECT_NEAR(above["error_horizontal"], near["error_horizontal"], 1e-3);
    const json self = reportsOf(runs, "--reference log.tqx log.tqx")[0]["figures"];
    EXPECT_EQ(self["error_horizontal"], 0);
}

TEST(Report, SatellitesBelowTheMaskDoNotCount)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 60");
    double before = 1e9;
    for (const int mask : {0, 15, 30, 60}) {
        const json report = reportsOf(runs, "--mask " + std::to_string(mask) + " log.tqx")[0];
        const double satellites = report["figures"]["satellites"];
        EXPECT_LT(satellites, before) << mask;
        before = satellites;
        for (const json& satellite : report["satellites"])
            EXPECT_GE(satellite["highest"], mask) << satellite;
    }
}

/// Without epochs nothing is known, and nothing is praised.
TEST(Report, EmptyLogsAreUnknown)
{
    const ToolRuns runs;
    runs.write("empty.tqx", "");
    const json report = reportsOf(runs, "empty.tqx")[0];
    for (const json& verdict : report["verdicts"])
        EXPECT_EQ(verdict["grade"], "unknown") << verdict;
    EXPECT_TRUE(report["figures"]["interval"].is_null());
    EXPECT_TRUE(report["first"].is_null());
    EXPECT_EQ(runs.expectRun("report empty.tqx").find("conspicuous"), std::string::npos);
    EXPECT_EQ(runs.run("report empty.tqx --require 'completeness > 0'"), 3);
    runs.expectRun("simulate -o one.tqx --duration 1");
    EXPECT_EQ(reportsOf(runs, "one.tqx")[0]["figures"]["epochs_expected"], 1);
}

struct Requirement {
    const char* text;
    int status;
};

TEST(Report, RequirementDecidesTheExitStatus)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 100 --fault outage@50+10");
    for (const Requirement& each : {
             Requirement{"completeness >= 0.8", 0},
             {"completeness >= 0.95", 3},
             {"completeness >= 80 %", 0},
             {"completeness >= 95%", 3},
             {"completeness >= 0.8 and slips_per_hour < 5", 0},
             {"completeness >= 0.95 and slips_per_hour < 5", 3},
             {"completeness >= 0.95 or slips_per_hour < 5", 0},
             {"completeness >= 0.95 or slips > 0 and outages == 1", 3},
             {"outages != 1", 3},
             {"error_horizontal < 1000", 3},
             {"completness > 1", 1},
             {"completeness", 1},
             {"completeness > high", 1},
             {"completeness => 1", 1},
             {"", 0},
         }) {
        EXPECT_EQ(runs.run(std::string("report log.tqx --require '") + each.text + "'"),
                  each.status)
            << each.text;
    }
    EXPECT_EQ(runs.run("report missing.tqx --require 'completeness > 2'"), 1);
}

TEST(Report, SeveralLogsAreComparedSideBySide)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o a.tqx --duration 60");
    runs.expectRun("simulate -o b.tqx --duration 60 --fault outage@20+30");
    const json logs = reportsOf(runs, "a.tqx b.tqx");
    ASSERT_EQ(logs.size(), 2U);
    EXPECT_EQ(logs[0]["name"], "a.tqx");
    EXPECT_EQ(logs[0]["figures"]["outages"], 0);
    EXPECT_EQ(logs[1]["figures"]["outages"], 1);
    EXPECT_NE(runs.expectRun("report a.tqx b.tqx").find("epochs_found"), std::string::npos);
}

/// A log without measurements has the completeness of its positions; others are not known.
TEST(Report, PositionsAloneAreEnough)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 60");
    runs.expectRun("cut --type PVTGeodetic2 log.tqx -o cut.tqx");
    const json report = reportsOf(runs, "cut.tqx")[0];
    EXPECT_EQ(report["figures"]["epochs_found"], 60);
    EXPECT_TRUE(report["figures"]["slips"].is_null());
    EXPECT_EQ(report["verdicts"][0]["grade"], "good");
    EXPECT_EQ(report["verdicts"][4]["grade"], "unknown");
}

/// The guide lists every figure with its definition.
TEST(Report, GuideListsEveryFigure)
{
    std::ifstream file(TQX_TESTS_DIR "/../doc/report.md");
    const std::string guide{std::istreambuf_iterator<char>(file), {}};
    for (const tqx::quality::Figure& figure : tqx::quality::figures()) {
        const std::string row = std::string("| `") + figure.key + "` | " + figure.unit +
                                (figure.unit[0] == 0 ? "| " : " | ") + figure.definition + " |";
        EXPECT_NE(guide.find(row), std::string::npos) << row;
    }
}

} // namespace
