// Navigation files of simulated logs, and a public one of all systems.

#include "RinexRules.h"
#include "RinexText.h"
#include "ToolRuns.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

namespace
{

std::string publicFile()
{
    std::ifstream file(TQX_TESTS_DIR "/data/rinex/navigation_4.00_excerpt.rnx", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Places of some parameters among the numbers of a record, and their factor.
struct Place {
    const char* parameter;
    size_t place;
    double factor;
};

const std::map<std::string, std::vector<Place>> places = {
    {"LNAV",
     {{"a_f0", 0, 1},
      {"IODE", 3, 1},
      {"SQRT_A", 10, 1},
      {"t_oe", 11, 1},
      {"i_0", 15, 1},
      {"WNt_oe", 21, 1},
      {"Delay1", 25, 1},
      {"IODC", 26, 1}}},
    {"INAV",
     {{"a_f0", 0, 1},
      {"IODE", 3, 1},
      {"M_0", 6, 1},
      {"WNt_oe", 21, 1},
      {"Sources", 20, 1},
      {"Delay2", 26, 1}}},
    {"FNAV", {{"a_f0", 0, 1}, {"OMEGA_0", 13, 1}, {"Sources", 20, 1}, {"Delay1", 25, 1}}},
    {"D1",
     {{"a_f1", 1, 1},
      {"e", 8, 1},
      {"t_oe", 11, 1},
      {"WNt_oe", 21, 1},
      {"Delay1", 25, 1},
      {"IODC", 28, 1}}},
    {"CNV3",
     {{"A_DOT", 3, 1},
      {"t_oe", 11, 1},
      {"SatType", 21, 1},
      {"t_op", 22, 1},
      {"Delay1", 30, 1},
      {"Transmitted", 31, 1}}},
    {"FDMA",
     {{"a_f0", 0, 1},
      {"X", 3, 1e-3},
      {"Vy", 8, 1e-3},
      {"Channel", 10, 1},
      {"Az", 13, 1e-3},
      {"Status", 15, 1},
      {"Delay1", 16, 1}}},
};

class NavigationFileTest : public testing::TestWithParam<const char*>
{
};

} // namespace

TEST(NavigationText, ReadsThePublicFile)
{
    EXPECT_EQ(rinex::faultsOfNavigation(publicFile()), std::vector<std::string>());
    const rinex::NavigationFile file = rinex::readNavigation(publicFile());
    std::map<std::string, int> kinds;
    for (const rinex::NavigationRecord& record : file.records)
        ++kinds[record.kind];
    EXPECT_EQ(kinds, (std::map<std::string, int>{{"EOP", 4}, {"EPH", 14}, {"ION", 8}, {"STO", 8}}));
    EXPECT_DOUBLE_EQ(*file.records.back().numbers[0], 1.104795373976e-04);
    EXPECT_FALSE(file.records.back().numbers[20]);
}

// Where our writer has a record that the public file has, it has as many numbers in its lines.
TEST(NavigationText, RecordsHaveTheLinesOfThePublicFile)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 3 -o log.tqx");
    tool.expectRun("rinex -q --rinex 4.02 log.tqx -o files");
    std::map<std::string, size_t> lines;
    for (const rinex::NavigationRecord& record : rinex::readNavigation(publicFile()).records)
        lines[record.kind + record.satellite[0] + record.message] = (record.numbers.size() + 4) / 4;
    std::set<std::string> compared;
    for (const rinex::NavigationRecord& record :
         rinex::readNavigation(tool.readOnly("files", "_MN.rnx")).records) {
        const std::string key = record.kind + record.satellite[0] + record.message;
        const auto known = lines.find(key);
        if (known == lines.end())
            continue;
        compared.insert(key);
        EXPECT_EQ((record.numbers.size() + 4) / 4, known->second) << key;
    }
    for (const char* key : {"EPHGLNAV", "EPHRFDMA", "EPHEINAV", "EPHEFNAV", "EPHCD1", "IONGLNAV",
                            "IONEIFNV", "IONCD1D2", "STOGLNAV", "STOCD1D2", "STORFDMA"})
        EXPECT_EQ(compared.count(key), 1U) << key;
}

// What has no record is counted, in both versions and in the table, and the rest is written.
TEST_P(NavigationFileTest, WhatIsLeftOutIsCounted)
{
    const auto blockOf = [](const char* fields) {
        return std::string(
                   R"({"block":"NavICLNav","fields":{"WNc":2400,"t_oe":216000,"t_oc":216000)") +
               fields + "}}\n";
    };
    const ToolRuns tool;
    tool.write("lines", blockOf(R"(,"TOW":216000000,"PRN":193,"Source":1)") +
                            blockOf(R"(,"TOW":216001000,"PRN":193,"Source":1)") +
                            blockOf(R"(,"TOW":216002000,"PRN":194,"Source":0)") +
                            blockOf(R"(,"TOW":216003000,"PRN":0,"Source":0)") +
                            blockOf(R"(,"TOW":4294967295,"PRN":194,"Source":0)"));
    tool.expectRun("encode lines -o log.tqx");
    const auto expectCounts = [&tool] {
        const std::string words = tool.read("err");
        for (const char* line : {"1 navigation block without a time left out",
                                 "1 navigation block of an unknown satellite left out",
                                 "2 navigation blocks of NavIC with the message on L1 left out"}) {
            const size_t place = words.find(line);
            EXPECT_NE(place, std::string::npos) << line << "\n" << words;
            EXPECT_EQ(words.find(line, place + 1), std::string::npos) << words;
        }
    };
    tool.expectRun(std::string("rinex -q log.tqx -o files --rinex ") + GetParam());
    expectCounts();
    const std::string text = tool.readOnly("files", "_MN.rnx");
    EXPECT_EQ(rinex::faultsOfNavigation(text), std::vector<std::string>());
    const rinex::NavigationFile file = rinex::readNavigation(text);
    ASSERT_EQ(file.records.size(), 1U);
    EXPECT_EQ(file.records[0].satellite, "I04");
    EXPECT_EQ(rinex::linesOf(tool.expectRun("ephemerides log.tqx")).size(), 2U);
    expectCounts();
}

TEST_P(NavigationFileTest, FollowsTheRulesAndHoldsTheEphemerides)
{
    const ToolRuns tool;
    const bool isV3 = std::string(GetParam()) == "3.05";
    tool.expectRun("simulate --duration 9000 --rate 0.02 -o log.tqx");
    tool.expectRun(std::string("rinex -q log.tqx -o files --rinex ") + GetParam());
    const std::string text = tool.readOnly("files", "_MN.rnx");
    EXPECT_EQ(rinex::faultsOfNavigation(text), std::vector<std::string>());
    const rinex::NavigationFile file = rinex::readNavigation(text);
    std::map<std::string, std::vector<const rinex::NavigationRecord*>> records;
    for (const rinex::NavigationRecord& record : file.records) {
        if (record.kind == "EPH")
            records[record.satellite].push_back(&record);
    }

    std::map<std::string, int> compared;
    size_t expected = 0;
    for (const std::string& line :
         rinex::linesOf(tool.expectRun("ephemerides --format jsonl log.tqx"))) {
        const auto row = nlohmann::json::parse(line);
        const std::string message = row["Message"];
        if (isV3 && message == "CNV3")
            continue;
        ++expected;
        const std::string reference = row["Reference"];
        const auto part = [&](size_t i, size_t n) { return std::stoi(reference.substr(i, n)); };
        const double time = rinex::secondsOf(part(0, 4), part(5, 2), part(8, 2), part(11, 2),
                                             part(14, 2), part(17, 2));
        const auto agrees = [&](const rinex::NavigationRecord* record) {
            if (record->seconds != time || (!isV3 && record->message != message))
                return false;
            for (const Place& place : places.at(message)) {
                const double value = row[place.parameter].get<double>() * place.factor;
                if (place.place >= record->numbers.size() || !record->numbers[place.place] ||
                    std::fabs(*record->numbers[place.place] - value) > 1e-12 * std::fabs(value))
                    return false;
            }
            return true;
        };
        const auto& candidates = records[row["Satellite"].get<std::string>()];
        EXPECT_EQ(std::count_if(candidates.begin(), candidates.end(), agrees), 1) << line;
        ++compared[message];
    }
    EXPECT_EQ(compared.size(), isV3 ? 5U : 6U);
    size_t written = 0;
    for (const auto& ofSatellite : records)
        written += ofSatellite.second.size();
    EXPECT_EQ(written, expected);
}

INSTANTIATE_TEST_SUITE_P(Versions, NavigationFileTest, testing::Values("3.05", "4.02"),
                         [](const auto& instance) {
                             return instance.param == std::string("3.05") ? "V305" : "V402";
                         });

TEST(NavigationFile, HeaderOfVersion3TellsIonosphereTimesAndLeapSeconds)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 3 -o log.tqx");
    tool.expectRun("rinex -q log.tqx -o files");
    std::set<std::string> found;
    for (const rinex::HeaderLine& line :
         rinex::readNavigation(tool.readOnly("files", "_MN.rnx")).header) {
        if (line.label == "IONOSPHERIC CORR" || line.label == "TIME SYSTEM CORR")
            found.insert(line.content.substr(0, 4));
        if (line.label == "LEAP SECONDS") {
            EXPECT_EQ(line.content.substr(0, 24), "    18    18  1929     7");
        }
    }
    EXPECT_EQ(found, (std::set<std::string>{"BDSA", "BDSB", "BDUT", "GAGP", "GAL ", "GAUT", "GLGP",
                                            "GLUT", "GPSA", "GPSB", "GPUT"}));
}
