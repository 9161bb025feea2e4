#include "Tool.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <map>
#include <string>
#include <tuple>

using nlohmann::json;

// Compact blocks carry the measurements of the ordinary ones, so that both must give the same rows.

namespace
{

using Key = std::tuple<double, std::string, std::string>; ///< second of the week, satellite, signal

std::map<Key, json> observationsOf(const std::string& log, const QStringList& more = {})
{
    const ToolRun run =
        runTool(QStringList{"observations", "--format", "jsonl"} + more + QStringList{"-"}, log);
    EXPECT_EQ(run.status, 0) << run.words;
    std::map<Key, json> rows;
    for (const std::string& line : linesOf(run.output)) {
        const json row = json::parse(line);
        rows[{row.at("TOW"), row.at("Satellite"), row.at("Signal")}] = row;
    }
    return rows;
}

std::string without(const QStringList& arguments, const std::string& log)
{
    return runTool(QStringList{"cut"} + arguments + QStringList{"-"}, log).output;
}

std::string simulated(const QStringList& more)
{
    return runTool(QStringList{"simulate", "--compact", "--duration", "35"} + more).output;
}

void expectNear(const json& compact, const json& full, const char* name, double tolerance)
{
    ASSERT_EQ(compact.at(name).is_null(), full.at(name).is_null()) << compact << full;
    if (full.at(name).is_null())
        return;
    EXPECT_NEAR(compact.at(name).get<double>(), full.at(name).get<double>(), tolerance)
        << name << compact;
}

void expectSame(const std::map<Key, json>& compact, const std::map<Key, json>& full)
{
    for (const auto& [key, row] : compact) {
        const auto found = full.find(key);
        ASSERT_NE(found, full.end()) << row;
        expectNear(row, found->second, "Range", 0.0056); // slaves come in centimetres
        expectNear(row, found->second, "Phase", 0.0125); // a millimetre of the shortest wave
        expectNear(row, found->second, "Doppler", 0.001);
        expectNear(row, found->second, "CN0", 0.15);
        EXPECT_EQ(row.at("Lost"), found->second.at("Lost")) << row;
    }
}

} // namespace

TEST(Compact, GivesTheSameObservations)
{
    const struct {
        const char* name;
        QStringList options;
    } cases[] = {
        {"still", {}},
        {"fast", {"--track", "circle", "--speed", "60", "--rate", "5"}},
        {"jumps", {"--clock-drift", "60"}},
        {"slips", {"--slips", "200"}},
        {"all systems",
         {"--systems", "gps,glonass,galileo,beidou,qzss,navic,sbas", "--position", "5,100,50"}},
        {"over the week", {"--start", "2403:604770"}},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.name);
        const std::string log = simulated(each.options);
        const auto compact = observationsOf(without({"--not-type", "MeasEpoch2"}, log));
        expectSame(compact, observationsOf(log));
        EXPECT_GT(compact.size(), 30 * 30U);
    }
}

TEST(Compact, BeginsWithAReferenceEpoch)
{
    const std::string log = simulated({});
    // The log begins 5 seconds after a reference epoch: until the next one nothing completes codes.
    const std::string late = without({"--not-type", "MeasEpoch2", "--from", "2400:216005"}, log);
    const ToolRun run = runTool({"observations", "--format", "jsonl", "-"}, late);
    EXPECT_NE(run.words.find("without a reference"), std::string::npos) << run.words;
    size_t early = 0;
    size_t later = 0;
    for (const std::string& line : linesOf(run.output)) {
        const json row = json::parse(line);
        const bool isComplete = !row.at("Range").is_null();
        EXPECT_EQ(isComplete, row.at("TOW").get<double>() >= 216010) << line;
        ++(isComplete ? later : early);
    }
    EXPECT_GT(early, 200U);
    EXPECT_GT(later, 1000U);
    // A command for only the later part reads the epochs before.
    const std::string all = without({"--not-type", "MeasEpoch2"}, log);
    for (const auto& [key, row] : observationsOf(all, {"--from", "2400:216005"})) {
        EXPECT_GE(std::get<0>(key), 216005);
        EXPECT_FALSE(row.at("Range").is_null());
        EXPECT_EQ(row.at("Lost"), false);
    }
}

TEST(Compact, AllFormsAreUsed)
{
    const std::string log = simulated({"--slips", "200"});
    std::map<std::string, size_t> forms;
    for (const std::string& line : linesOf(
             runTool({"dump", "--format", "jsonl", "--type", "Meas3Ranges", "-"}, log).output)) {
        const json block = json::parse(line);
        for (const json& satellite : block.at("fields").at("M3SatData")) {
            ++forms[satellite.at("MasterType").get<std::string>() + " master"];
            ++forms[satellite.at("SlaveType").get<std::string>() + " slave"];
        }
    }
    for (const char* form :
         {"Long master", "Short master", "Short residue master", "Long residue master",
          "No slave slave", "Short slave", "Residue slave"})
        EXPECT_GT(forms[form], 0U) << form;
}
