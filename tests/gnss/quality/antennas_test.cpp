#include "ReportRuns.h"

#include <gtest/gtest.h>

namespace
{

using nlohmann::json;

constexpr unsigned start = 216000000; ///< milliseconds of the week of the first epoch

/// What goes wrong at the second antenna alone, with its effect on one of its observations.
struct Fault {
    const char* name;
    const char* kind;
    unsigned from; ///< seconds after the start
    unsigned until;
    const char* subject;
    void (*change)(json& observation, unsigned svid);
};

void losePhase(json& observation, unsigned svid)
{
    if (svid == 6 && observation["Type"] == 32)
        observation["CarrierMSB"] = observation["CarrierMSB"].get<int>() + 1;
}

void weaken(json& observation, unsigned)
{
    observation["CN0"] = observation["CN0"].get<int>() - 60;
}

class AntennaFaults : public testing::TestWithParam<Fault>
{
};

/// Is found at that antenna, at its time, and makes the area's grade worse; the main antenna's
/// figures stay what they are.
TEST_P(AntennaFaults, AreOfTheirAntenna)
{
    const Fault& fault = GetParam();
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 400 --rate 0.2 --two-antennas");
    runs.expectRun("cut --type MeasEpoch2,SatVisibility1 log.tqx -o cut.tqx");
    rewrite(runs, "cut.tqx", "fault.tqx", [&fault](const std::string& name, json& fields) {
        const bool isTime = fields["TOW"] >= start + fault.from * 1000 &&
                            fields["TOW"] < start + fault.until * 1000;
        if (name != "MeasEpoch2" || !isTime)
            return;
        for (json& satellite : fields["Type1"]) {
            json left = json::array();
            for (json& observation : satellite["Type2"]) {
                const bool isSecond = observation["Type"] >= 32;
                if (isSecond && fault.change)
                    fault.change(observation, satellite["SVID"]);
                if (!isSecond || fault.change)
                    left.push_back(observation);
            }
            satellite["N2"] = left.size();
            satellite["Type2"] = left;
        }
    });
    const json before = reportsOf(runs, "cut.tqx")[0];
    const json after = reportsOf(runs, "fault.tqx")[0];
    EXPECT_EQ(before["findings"], json::array());
    for (const auto& [key, figure] : before["figures"].items()) {
        if (key != "blocks") {
            EXPECT_EQ(after["figures"][key], figure) << key;
        }
    }
    EXPECT_EQ(after["signals"], before["signals"]);
    ASSERT_EQ(after["findings"].size(), 1U) << after["findings"];
    const json& finding = after["findings"][0];
    EXPECT_EQ(finding["kind"], fault.kind);
    EXPECT_EQ(finding["antenna"], 1);
    EXPECT_EQ(finding["subject"], fault.subject);
    const auto firstSecond = start / 1000;
    EXPECT_NEAR(finding["start"]["tow"].get<double>(), firstSecond + fault.from, 5);
    EXPECT_EQ(after["other_antennas"][0]["finding_counts"][fault.kind], 1);
    EXPECT_EQ(after["finding_counts"][fault.kind], 0);
    unsigned worse = 0;
    for (size_t i = 0; i < before["verdicts"].size(); ++i) {
        if (before["verdicts"][i] == after["verdicts"][i])
            continue;
        ++worse;
        EXPECT_EQ(before["verdicts"][i]["grade"], "good");
        EXPECT_NE(after["verdicts"][i]["grade"], "good");
        EXPECT_NE(after["verdicts"][i]["words"].get<std::string>().find("antenna 1"),
                  std::string::npos)
            << after["verdicts"][i];
    }
    EXPECT_EQ(worse, 1U);
    EXPECT_NE(runs.expectRun("report fault.tqx").find("  antenna 1: "), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Kinds, AntennaFaults,
                         testing::Values(Fault{"Outage", "outage", 100, 130, "", nullptr},
                                         Fault{"UntilTheEnd", "outage", 380, 400, "", nullptr},
                                         Fault{"Weak", "weak_signals", 200, 260, "all bands",
                                               weaken},
                                         Fault{"Slip", "slip", 300, 400, "G06", losePhase}),
                         [](const auto& test) { return test.param.name; });

/// The simulated antennas measure the same satellites, each with noise of its own.
TEST(Antennas, HaveTheirOwnFigures)
{
    const ToolRuns runs;
    runs.expectRun("simulate -o log.tqx --duration 120 --two-antennas");
    const json report = reportsOf(runs, "log.tqx")[0];
    ASSERT_EQ(report["other_antennas"].size(), 1U);
    const json& other = report["other_antennas"][0];
    EXPECT_EQ(other["antenna"], 1);
    EXPECT_EQ(other["figures"]["observations"], report["figures"]["observations"]);
    EXPECT_EQ(other["figures"]["completeness"], 1);
    EXPECT_NE(other["figures"]["multipath"], report["figures"]["multipath"]);
    EXPECT_NEAR(other["figures"]["multipath"], report["figures"]["multipath"], 0.05);
    EXPECT_EQ(other["signals"].size(), report["signals"].size());
    EXPECT_FALSE(other["figures"].contains("positions"));
}

} // namespace
