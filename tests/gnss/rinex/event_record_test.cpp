// Pulses on inputs of the receiver are external events of the observation file, between the epochs
// that they lie between.

#include "RinexRules.h"
#include "RinexText.h"
#include "ToolRuns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

struct Pulse {
    double tow;
    std::string text;
};

/// The events of a file; each is after the epoch before it and not after the next.
std::vector<Pulse> pulsesOf(const rinex::ObservationFile& file)
{
    const double week = rinex::secondsOf(1980, 1, 6, 0, 0, 0) + 2400 * 604800.0;
    std::vector<Pulse> pulses;
    for (const rinex::Epoch& epoch : file.epochs) {
        if (epoch.flag == 5)
            pulses.push_back({epoch.seconds - week, epoch.lines.empty() ? "" : epoch.lines[0]});
    }
    return pulses;
}

/// The lines of a block with pulses, as JSON.
std::string pulseAt(double tow, int info, const char* offset)
{
    return R"({"block":"ExtEvent1","fields":{"TOW":)" + std::to_string(std::lround(tow * 1000)) +
           R"(,"WNc":2400,"EventInfo":)" + std::to_string(info) + R"(,"Offset":)" + offset + "}}\n";
}

rinex::ObservationFile readFile(const ToolRuns& tool, const std::string& folder)
{
    const std::string text = tool.readOnly(folder, "_MO.rnx");
    EXPECT_EQ(rinex::faultsOfObservations(text), std::vector<std::string>());
    return rinex::readObservations(text);
}

} // namespace

TEST(EventRecords, AreThoseOfTheEventsCommand)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 30 --pulses 0.7 --two-antennas -o log.tqx");
    const std::string table = tool.expectRun("events -q log.tqx");
    for (const char* ending : {"SIMU00XXX_R_20260061200_01M_01S_MO.rnx", // of each antenna
                               "SIMU10XXX_R_20260061200_01M_01S_MO.rnx"}) {
        if (tool.list("files").empty())
            tool.expectRun("rinex -q log.tqx -o files");
        const std::string text = tool.read(std::string("files/") + ending);
        EXPECT_EQ(rinex::faultsOfObservations(text), std::vector<std::string>());
        const std::vector<Pulse> pulses = pulsesOf(rinex::readObservations(text));
        const std::vector<std::string> rows = rinex::linesOf(table);
        ASSERT_EQ(pulses.size() + 1, rows.size());
        ASSERT_GT(pulses.size(), 30U);
        for (size_t i = 0; i < pulses.size(); ++i) {
            EXPECT_NEAR(pulses[i].tow, std::stod(rows[i + 1].substr(5)), 0.6e-7) << rows[i + 1];
            EXPECT_EQ(pulses[i].text.substr(0, 29), "EXTERNAL EVENT Event A Rising");
        }
    }
}

TEST(EventRecords, AreInOrderOnceAndInTheSelectedTime)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 20 -o whole.tqx");
    // Reported after the epoch that follows it, twice, at the end of a millisecond and at an epoch.
    tool.write("lines", pulseAt(216004.999, 0x12, "0.00099998") + pulseAt(216004.2, 1, "0") +
                            pulseAt(216004.2, 1, "0") + pulseAt(216007, 1, "0") +
                            pulseAt(216015, 1, "0"));
    tool.expectRun("encode lines -o pulses.tqx");
    tool.expectRun("cut --to 2400:216006 whole.tqx -o first.tqx");
    tool.expectRun("cut --from 2400:216006 whole.tqx -o rest.tqx");
    tool.expectRun("rinex -q first.tqx pulses.tqx rest.tqx -o files --to 2400:216010");
    const rinex::ObservationFile file = readFile(tool, "files");
    const std::vector<Pulse> pulses = pulsesOf(file);
    ASSERT_EQ(pulses.size(), 3U);
    EXPECT_NEAR(pulses[0].tow, 216004.2, 1e-7);
    EXPECT_NEAR(pulses[1].tow, 216005, 1e-7);
    EXPECT_NEAR(pulses[2].tow, 216007, 1e-7);
    EXPECT_EQ(pulses[1].text.substr(0, 30), "EXTERNAL EVENT Event B Falling");
    EXPECT_EQ(file.epochs.size(), 13U);
}
