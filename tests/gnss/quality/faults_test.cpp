#include "ToolRuns.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <ostream>
#include <string>
#include <vector>

namespace
{

using nlohmann::json;

double secondsOf(const json& time)
{
    return time["week"].get<double>() * 604800 + time["tow"].get<double>();
}

/// By how many seconds a finding may differ from the fault, because of what it is found from:
/// epochs before and after, stretches of a minute, corrections every ten seconds.
double toleranceOf(const std::string& kind)
{
    return kind == "multipath" ? 60 : kind == "corrections" ? 11 : 1.5;
}

std::string kindOf(const json& fault)
{
    return fault["kind"] == "loss_of_lock" ? "slip" : fault["kind"].get<std::string>();
}

bool isOf(const json& finding, const json& fault)
{
    const std::string kind = kindOf(fault);
    const std::string subject = fault["subject"];
    const std::string found = finding["subject"];
    const double tolerance = toleranceOf(kind);
    const bool isSame = subject.size() == 1 ? found == (subject == "E" ? "Galileo" : "GPS")
                        : subject.empty()   ? true
                                            : found == subject;
    return finding["kind"] == kind && isSame &&
           std::fabs(secondsOf(finding["start"]) - secondsOf(fault["start"])) <= tolerance &&
           std::fabs(secondsOf(finding["end"]) - secondsOf(fault["end"])) <= tolerance;
}

struct Plan {
    const char* name;
    const char* arguments;
};

void PrintTo(const Plan& value, std::ostream* stream)
{
    *stream << value.name;
}

class Faults : public testing::TestWithParam<Plan>
{
};

/// Each fault that was brought in is found at its time, and nothing else is.
TEST_P(Faults, AreAllFoundAndNoOther)
{
    const ToolRuns runs;
    runs.expectRun(std::string("simulate -o log.tqx --truth truth.json ") + GetParam().arguments);
    const json faults = json::parse(runs.read("truth.json"))["faults"];
    const json report = json::parse(runs.expectRun("report --json log.tqx"))["logs"][0];
    std::vector<json> findings = report["findings"];
    for (const json& fault : faults) {
        EXPECT_GT(fault["epochs"].get<int>(), 0) << "no effect: " << fault;
        const auto found = std::find_if(findings.begin(), findings.end(),
                                        [&fault](const json& f) { return isOf(f, fault); });
        if (found == findings.end()) {
            ADD_FAILURE() << "not found: " << fault;
        } else {
            findings.erase(found);
        }
    }
    for (const json& finding : findings)
        ADD_FAILURE() << "no fault: " << finding;
    for (const json& verdict : report["verdicts"]) {
        const bool isAlarm = verdict["grade"] == "fair" || verdict["grade"] == "poor";
        EXPECT_FALSE(faults.empty() && isAlarm) << verdict;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Plans, Faults,
    testing::Values(
        Plan{"None", "--duration 1800"},
        Plan{"NoneMoving", "--duration 900 --rate 2 --track circle --speed 15"},
        Plan{"NoneAcrossWeeks", "--start 2404:604500 --duration 900"},
        Plan{"NoneWithClockJumps", "--duration 900 --clock-drift 20"},
        Plan{"NoneSlow", "--duration 14400 --rate 0.0333333333333333 --seed 5"},
        Plan{"NoneOfGpsAlone", "--duration 3600 --rate 0.2 --systems gps"},
        Plan{"NoneOfADay", "--duration 86400 --rate 0.0333333333333333 --position 69.6,18.9,100"},
        Plan{"NoneOfSevenSystems",
             "--duration 900 --systems gps,glonass,galileo,beidou,qzss,navic,sbas --two-antennas"},
        Plan{"All", "--duration 2400 --fault outage@2300+20 --fault system_outage:E@300+120 "
                    "--fault multipath:G14@500+300 --fault slip:C40@900 "
                    "--fault loss_of_lock:E09@1000 --fault interference@1200+60 "
                    "--fault antenna@1500+30 --fault corrections@1800+90"},
        Plan{"SystemUntilTheEnd", "--duration 600 --fault system_outage:G@400+200"},
        Plan{"LongOutage", "--duration 1200 --fault outage@300+600"},
        Plan{"Repeated", "--duration 900 --fault interference@100+30 --fault interference@300+30 "
                         "--fault slip:G14@500 --fault slip:G14@600"}),
    [](const auto& test) { return test.param.name; });

TEST(FaultOptions, BadOnesAreRefused)
{
    const ToolRuns runs;
    for (const char* fault :
         {"outage", "outage@5", "outage:G@5+5", "storm@5+5", "slip:G14@5+5", "slip:G@5", "slip@5",
          "multipath:X14@5+5", "system_outage:G14@5+5", "slip:G14@-5", "outage@5+x"}) {
        EXPECT_EQ(runs.run(std::string("simulate --duration 1 -o log.tqx --fault ") + fault), 1)
            << fault;
        EXPECT_NE(runs.read("err").find(fault), std::string::npos) << runs.read("err");
    }
    EXPECT_EQ(runs.run("simulate --duration 1 -o log.tqx --fault slip:G14@0"), 0);
}

} // namespace
