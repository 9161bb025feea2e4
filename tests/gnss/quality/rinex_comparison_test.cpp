#include "RinexArcs.h"
#include "ToolRuns.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>

namespace
{

struct Log {
    const char* name;
    const char* arguments;
};

void PrintTo(const Log& value, std::ostream* stream)
{
    *stream << value.name;
}

class RinexComparison : public testing::TestWithParam<Log>
{
};

/// Multipath of each signal and slips of each satellite are those that follow from the RINEX file.
TEST_P(RinexComparison, Agrees)
{
    const ToolRuns runs;
    runs.expectRun(std::string("simulate -o log.tqx --duration 900 ") + GetParam().arguments);
    runs.expectRun("rinex -q log.tqx -o rinex");
    const rinex::ObservationFile file = rinex::readObservations(runs.readOnly("rinex", "MO.rnx"));
    const RinexArcs expected(file, 1);
    const auto report =
        nlohmann::json::parse(runs.expectRun("report --json --mask 0 log.tqx"))["logs"][0];

    std::map<std::string, unsigned> slips;
    for (const auto& satellite : report["satellites"]) {
        if (satellite["slips"] != 0)
            slips[satellite["satellite"]] = satellite["slips"];
    }
    EXPECT_EQ(slips, expected.slips);
    unsigned total = 0;
    for (const auto& [satellite, count] : slips)
        total += count;
    EXPECT_EQ(report["figures"]["slips"], total);

    ASSERT_EQ(report["signals"].size(), expected.multipath.size());
    for (const auto& signal : report["signals"]) {
        const std::string key =
            signal["system"].get<std::string>() + signal["signal"].get<std::string>();
        ASSERT_EQ(expected.multipath.count(key), 1U) << key;
        const RinexArcs::Multipath& multipath = expected.multipath.at(key);
        EXPECT_EQ(signal["multipath_epochs"], multipath.epochs) << key;
        EXPECT_NEAR(signal["multipath"].get<double>(), multipath.get(), 2e-4) << key;
        EXPECT_GT(multipath.get(), 0.05) << key;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Logs, RinexComparison,
    testing::Values(Log{"Calm", ""}, Log{"Slips", "--slips 20"},
                    Log{"Faults",
                        "--fault slip:G14@300 --fault loss_of_lock:E09@400 --fault "
                        "multipath:C40@500+200 --fault outage@700+20 --fault outage@800+2"},
                    Log{"ClockJumps", "--clock-drift 10 --slips 5"}),
    [](const auto& test) { return test.param.name; });

} // namespace
