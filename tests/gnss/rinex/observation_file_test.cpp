// Observation files of simulated logs: they follow the rules, and hold what `tqx observations`
// shows.

#include "RinexRules.h"
#include "RinexText.h"
#include "ToolRuns.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ostream>
#include <sstream>

namespace
{

struct Case {
    const char* name;
    const char* log;     ///< arguments of simulate
    const char* options; ///< of rinex and observations
    const char* version;
    size_t epochs;
    const char* file; ///< name of the observation file
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class ObservationFileTest : public testing::TestWithParam<Case>
{
};

std::vector<std::string> cellsOf(const std::string& line)
{
    std::vector<std::string> cells;
    std::string cell;
    for (std::istringstream stream(line); std::getline(stream, cell, ',');)
        cells.push_back(cell);
    return cells;
}

/// Columns of the table of observations.
enum Column {
    Week,
    Tow,
    Utc,
    Satellite,
    Signal,
    Antenna,
    Range,
    Phase,
    Doppler,
    Cn0,
    LockTime,
    Lost,
    HalfCycle
};

const rinex::SatelliteLine* findSatellite(const rinex::Epoch& epoch, const std::string& name)
{
    for (const rinex::SatelliteLine& satellite : epoch.satellites) {
        if (satellite.satellite == name)
            return &satellite;
    }
    return nullptr;
}

/// Every value of the table is in the file, to the digit that is printed there, and no other.
void expectSame(const rinex::ObservationFile& file, const std::string& table)
{
    const double gnssEpoch = rinex::secondsOf(1980, 1, 6, 0, 0, 0);
    const std::vector<std::string> lines = rinex::linesOf(table);
    size_t found = 0;
    auto epoch = file.epochs.begin();
    for (size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = cellsOf(lines[i]);
        const double time = gnssEpoch + std::stod(cells[Week]) * 604800 + std::stod(cells[Tow]);
        while (epoch != file.epochs.end() && epoch->seconds < time - 1e-6)
            ++epoch;
        ASSERT_NE(epoch, file.epochs.end()) << lines[i];
        ASSERT_NEAR(epoch->seconds, time, 1e-6) << lines[i];
        const rinex::SatelliteLine* satellite = findSatellite(*epoch, cells[Satellite]);
        ASSERT_TRUE(satellite) << lines[i];
        for (const int column : {Range, Phase, Doppler, Cn0}) {
            const std::string& cell = cells[static_cast<size_t>(column)];
            const auto value = satellite->values.find("CLDS"[column - Range] + cells[Signal]);
            ASSERT_EQ(value != satellite->values.end(), !cell.empty()) << lines[i];
            if (cell.empty())
                continue;
            ++found;
            ASSERT_NEAR(value->second.number, std::stod(cell), 0.00056) << lines[i];
            if (column == Phase) {
                ASSERT_EQ(value->second.lock,
                          (cells[Lost] == "1" ? 1 : 0) + (cells[HalfCycle] == "1" ? 2 : 0))
                    << lines[i];
            }
        }
    }
    size_t all = 0;
    for (const rinex::Epoch& each : file.epochs) {
        for (const rinex::SatelliteLine& satellite : each.satellites)
            all += satellite.values.size();
    }
    EXPECT_EQ(found, all);
    EXPECT_GT(all, 0U);
}

} // namespace

TEST_P(ObservationFileTest, FollowsTheRulesAndHoldsTheObservations)
{
    const ToolRuns tool;
    const Case& c = GetParam();
    tool.expectRun(std::string("simulate -o log.tqx ") + c.log);
    tool.expectRun(std::string("rinex -q log.tqx -o files --rinex ") + c.version + " " + c.options);
    const std::string text = tool.readOnly("files", "_MO.rnx");
    EXPECT_EQ(rinex::faultsOfObservations(text), std::vector<std::string>());
    const rinex::ObservationFile file = rinex::readObservations(text);
    EXPECT_EQ(file.epochs.size(), c.epochs);
    EXPECT_EQ(tool.list("files").front(), c.file);
    expectSame(file, tool.expectRun(std::string("observations -q log.tqx ") + c.options));
}

INSTANTIATE_TEST_SUITE_P(
    Logs, ObservationFileTest,
    testing::Values(
        Case{"Minute", "--duration 60", "", "3.05", 60, "SIMU00XXX_R_20260061200_01M_01S_MO.rnx"},
        Case{"Version4", "--duration 10", "", "4.02", 10, "SIMU00XXX_R_20260061200_01M_01S_MO.rnx"},
        Case{"FiftyHertz", "--duration 4 --rate 50 --track circle", "", "3.05", 200,
             "SIMU00XXX_R_20260061200_01M_50Z_MO.rnx"},
        Case{"Damaged", "--duration 300 --damage --seed 5", "", "3.05", 289,
             "XXXX00XXX_R_20260061200_05M_01S_MO.rnx"},
        Case{"WeekRollover", "--start 2404:604790 --duration 20", "", "3.05", 20,
             "SIMU00XXX_R_20260382359_01M_01S_MO.rnx"},
        Case{"SatellitesThatComeAndGo", "--duration 20000 --rate 0.01", "", "3.05", 200,
             "SIMU00XXX_R_20260061200_06H_00U_MO.rnx"},
        Case{"Decimated", "--duration 300 --start 2400:216007", "--interval 30", "3.05", 10,
             "SIMU00XXX_R_20260061200_05M_30S_MO.rnx"},
        Case{"OneSystem", "--duration 5", "--satellite 'R*'", "3.05", 5,
             "SIMU00XXX_R_20260061200_01M_01S_MO.rnx"},
        Case{"OneSignal", "--duration 5", "--signal '?1C,C2I'", "3.05", 5,
             "SIMU00XXX_R_20260061200_01M_01S_MO.rnx"},
        Case{"AllSystems",
             "--duration 20 --position 13,100,20 --systems "
             "gps,glonass,galileo,beidou,qzss,navic,sbas",
             "", "3.05", 20, "SIMU00XXX_R_20260061200_01M_01S_MO.rnx"},
        Case{"SlipsAndClockJumps", "--duration 1200 --rate 0.2 --slips 60 --clock-drift 10", "",
             "3.05", 240, "SIMU00XXX_R_20260061200_20M_05S_MO.rnx"},
        Case{"Stretch", "--duration 60", "--from 2400:216010 --to '2026-01-06T12:00:30 GPS'",
             "3.05", 20, "SIMU00XXX_R_20260061200_01M_01S_MO.rnx"}),
    [](const auto& instance) { return instance.param.name; });

TEST(ObservationFile, IsTheSameFromStandardInputAndCompressed)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 20 -o log.tqx");
    tool.expectRun("rinex -q log.tqx -o file");
    tool.expectRun("rinex -q - -o input < log.tqx");
    tool.expectRun("rinex -q log.tqx -o packed --gzip");
    EXPECT_EQ(tool.list("input"), tool.list("file")); // and no temporary file
    const auto body = [](const std::string& text) { return text.substr(text.find("MARKER NAME")); };
    const std::string text = tool.readOnly("file", "_MO.rnx");
    EXPECT_EQ(body(tool.readOnly("input", "_MO.rnx")), body(text));
    ASSERT_EQ(tool.list("packed").size(), 2U);
    const std::string unpack = "gzip -dc packed/" + tool.list("packed").front();
    tool.run("--version; " + unpack + " > unpacked; true");
    EXPECT_EQ(body(tool.read("unpacked")), body(text));
}

TEST(ObservationFile, SpoolThatIsRefusedIsAnError)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 5 -o log.tqx");
    tool.write("taken", "no folder");
    EXPECT_EQ(tool.run("rinex - -o taken < log.tqx"), 1);
    EXPECT_NE(tool.read("err").find("taken"), std::string::npos);
    EXPECT_EQ(tool.run("rinex - -o /proc < log.tqx"), 1);
    EXPECT_NE(tool.read("err").find("standard input"), std::string::npos) << tool.read("err");
}
