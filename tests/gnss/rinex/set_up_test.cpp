// Logs that no simulation makes: changed installations, several antennas, lost lock at cuts,
// signals and times that are not known. They are lines of JSON, changed and encoded again.

#include "RinexRules.h"
#include "RinexText.h"
#include "ToolRuns.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

using Json = nlohmann::json;

namespace
{

/// A simulated log whose blocks went through `change`; those that it makes empty are left out.
void makeLog(const ToolRuns& tool, const std::string& options,
             const std::function<void(const std::string& type, Json& fields)>& change)
{
    tool.expectRun("simulate -o whole.tqx " + options);
    std::string lines;
    for (const std::string& line :
         rinex::linesOf(tool.expectRun("dump --format jsonl --raw whole.tqx"))) {
        Json block = Json::parse(line);
        if (!block.contains("fields"))
            continue;
        block.erase("bytes");
        change(block["block"].get<std::string>(), block["fields"]);
        if (!block["fields"].empty())
            lines += block.dump() + "\n";
    }
    tool.write("lines", lines);
    tool.expectRun("encode lines -o log.tqx");
}

constexpr int firstTow = 216000000;

rinex::ObservationFile readFile(const ToolRuns& tool, const std::string& folder = "files",
                                const std::string& ending = "_MO.rnx")
{
    const std::string text = tool.readOnly(folder, ending);
    EXPECT_EQ(rinex::faultsOfObservations(text), std::vector<std::string>());
    return rinex::readObservations(text);
}

} // namespace

TEST(Installation, ChangeIsAnEvent)
{
    const ToolRuns tool;
    // A second log with another antenna follows the first.
    makeLog(tool, "--duration 10 --start 2400:216010", [&](const std::string& type, Json& fields) {
        if (type == "ReceiverSetup1") {
            fields["AntennaType"] = "OTHER           NONE";
            fields["AntennaDeltaH"] = 1.5;
        }
    });
    tool.expectRun("simulate --duration 10 -o first.tqx");
    tool.expectRun("rinex -q first.tqx log.tqx -o files");
    const rinex::ObservationFile file = readFile(tool);
    ASSERT_EQ(file.epochs.size(), 21U);
    const rinex::Epoch& event = file.epochs[10];
    EXPECT_EQ(event.flag, 4);
    EXPECT_EQ(event.seconds, file.epochs[11].seconds);
    std::string lines;
    for (const std::string& line : event.lines)
        lines += line + "\n";
    EXPECT_NE(lines.find("OTHER           NONE"), std::string::npos);
    EXPECT_NE(lines.find("        1.5000        0.0000        0.0000"), std::string::npos);
    EXPECT_EQ(file.only("ANTENNA: DELTA H/E/N").substr(0, 14), "        0.0000");
}

TEST(Installation, MissingIsSaidOnceAndNamesCanBeGiven)
{
    const ToolRuns tool;
    makeLog(tool, "--duration 5", [](const std::string& type, Json& fields) {
        if (type == "ReceiverSetup1")
            fields.clear();
    });
    tool.expectRun("rinex log.tqx -o bare");
    EXPECT_NE(tool.read("err").find("does not describe the installation"), std::string::npos);
    EXPECT_EQ(readFile(tool, "bare").only("MARKER NAME").substr(0, 8), "UNKNOWN ");
    tool.expectRun(
        "rinex log.tqx -o named --marker 'GRAZ 1' --observer 'A. Bühler' --agency Office");
    EXPECT_EQ(tool.read("err").find("installation"), std::string::npos);
    const rinex::ObservationFile file = readFile(tool, "named");
    EXPECT_EQ(file.only("MARKER NAME").substr(0, 7), "GRAZ 1 ");
    EXPECT_EQ(file.only("OBSERVER / AGENCY").substr(0, 28), "A. B_hler           Office  ");
    EXPECT_EQ(tool.list("named").front(), "GRAZ00XXX_R_20260061200_01M_01S_MO.rnx");
    tool.expectRun("rinex -q log.tqx -o station --marker graz12aut");
    EXPECT_EQ(tool.list("station").front(), "GRAZ12AUT_R_20260061200_01M_01S_MO.rnx");
    tool.expectRun("rinex -q log.tqx -o other --marker 'Graz 2AUT'");
    EXPECT_EQ(tool.list("other").front(), "GRAZ00XXX_R_20260061200_01M_01S_MO.rnx");
}

TEST(Installation, EachAntennaHasAFile)
{
    const ToolRuns tool;
    makeLog(tool, "--duration 5", [](const std::string& type, Json& fields) {
        if (type != "MeasEpoch2")
            return;
        // Galileo is tracked by the second antenna.
        for (Json& first : fields["Type1"]) {
            const int svid = first["SVID"];
            if (svid < 71 || svid > 106)
                continue;
            first["Type"] = first["Type"].get<int>() + (1 << 5);
            for (Json& other : first["Type2"])
                other["Type"] = other["Type"].get<int>() + (1 << 5);
        }
    });
    tool.expectRun("rinex -q log.tqx -o files");
    const rinex::ObservationFile main =
        readFile(tool, "files", "SIMU00XXX_R_20260061200_01M_01S_MO.rnx");
    const rinex::ObservationFile other =
        readFile(tool, "files", "SIMU10XXX_R_20260061200_01M_01S_MO.rnx");
    EXPECT_EQ(main.types.count('E'), 0U);
    EXPECT_EQ(main.types.size(), 3U);
    EXPECT_EQ(other.types.count('E'), 1U);
    EXPECT_EQ(other.types.size(), 1U);
    EXPECT_EQ(other.only("MARKER NAME").substr(0, 20), "SIMULATED SITE_AUX1 ");
    EXPECT_EQ(main.epochs.size(), other.epochs.size());
}

// Lock on all signals is lost between the fourth and the fifth second, where a stretch begins.
TEST(Lock, LossAtACutComesFromTheEpochBefore)
{
    const ToolRuns tool;
    makeLog(tool, "--duration 10", [](const std::string& type, Json& fields) {
        if (type != "MeasEpoch2")
            return;
        const int second = (fields["TOW"].get<int>() - firstTow) / 1000;
        const int lock = second < 5 ? 100 + second : second - 5;
        for (Json& first : fields["Type1"]) {
            first["LockTime"] = lock;
            for (Json& other : first["Type2"])
                other["LockTime"] = lock;
        }
    });
    const auto lossesOf = [&](const std::string& options) {
        tool.run("rinex -q log.tqx -o 'cut" + options + "' " + options);
        std::string losses;
        for (const rinex::Epoch& epoch : readFile(tool, "cut" + options).epochs)
            losses += epoch.satellites.at(0).values.at("L1C").lock & 1 ? '1' : '0';
        return losses;
    };
    EXPECT_EQ(lossesOf(""), "0000010000");
    EXPECT_EQ(lossesOf("--from 2400:216005"), "10000");
    EXPECT_EQ(lossesOf("--from 2400:216006"), "0000");
    EXPECT_EQ(lossesOf("--from 2400:216004"), "010000");
    // An epoch that is left out by the interval hands its loss on.
    EXPECT_EQ(lossesOf("--interval 4"), "001");
    EXPECT_EQ(lossesOf("--interval 5"), "01");
}

TEST(Losses, AreSaidOnceAndBreakNoRule)
{
    const ToolRuns tool;
    makeLog(tool, "--duration 10", [](const std::string& type, Json& fields) {
        if (type != "MeasEpoch2")
            return;
        const int second = (fields["TOW"].get<int>() - firstTow) / 1000;
        if (second == 3)
            fields["TOW"] = 4294967295U;
        if (second == 7)
            fields["TOW"] = firstTow + 5000;
        fields["Type1"][0]["Type"] = 16; // a signal that has no code
        fields["Type1"][1]["SVID"] = 62; // a slot that is not known
        fields["Type1"][2]["CodeLSB"] = 0;
        fields["Type1"][2]["Misc"] = 0;
        fields["Type1"][3]["SVID"] = 255; // no satellite
    });
    tool.expectRun("rinex log.tqx -o files");
    const std::string words = tool.read("err");
    for (const char* word :
         {"1 measurement block without a time", "1 epoch not later", "satellites with unknown slot",
          "of unknown satellites", "signal 16 of system G"}) {
        const size_t first = words.find(word);
        EXPECT_NE(first, std::string::npos) << word << "\n" << words;
        EXPECT_EQ(words.find(word, first + 1), std::string::npos) << word;
    }
    const rinex::ObservationFile file = readFile(tool);
    EXPECT_EQ(file.epochs.size(), 8U);
    // Without a code there is neither code nor phase, but Doppler and strength.
    const auto& values = file.epochs[0].satellites.at(1).values;
    EXPECT_EQ(values.count("C1C"), 0U);
    EXPECT_EQ(values.count("L1C"), 0U);
    EXPECT_EQ(values.count("D1C"), 1U);
}

TEST(Losses, LogWithoutMeasurementsOrEphemerides)
{
    const ToolRuns tool;
    tool.expectRun("simulate --duration 5 -o log.tqx");
    tool.expectRun("cut log.tqx --type 'MeasEpoch2' -o measured.tqx");
    tool.expectRun("rinex measured.tqx -o measured");
    EXPECT_NE(tool.read("err").find("no ephemerides"), std::string::npos);
    EXPECT_EQ(tool.list("measured").size(), 1U);
    readFile(tool, "measured");
    tool.expectRun("cut log.tqx --type '*Nav' -o navigation.tqx");
    tool.expectRun("rinex navigation.tqx -o navigation");
    EXPECT_NE(tool.read("err").find("no observations"), std::string::npos);
    EXPECT_EQ(tool.list("navigation").size(), 1U);
    tool.expectRun("cut log.tqx --type ReceiverStatus2 -o neither.tqx");
    EXPECT_EQ(tool.run("rinex neither.tqx -o neither"), 1);
    EXPECT_TRUE(tool.list("neither").empty());
}
