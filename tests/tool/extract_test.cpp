#include "Tool.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(Extract, WritesThePayloadsOfOneFormat)
{
    const std::string blocks = R"({"block":"DiffCorrIn","fields":{"Mode":0,"RTCM2Words":[513]}}
{"block":"DiffCorrIn","fields":{"Mode":2,"Source":1,"RTCM3Message":[211,0,10]}}
{"block":"DiffCorrIn","fields":{"Mode":2,"Source":2,"RTCM3Message":[]}}
{"block":"ASCIIIn","fields":{"ASCIIString":"X"}}
{"block":"DiffCorrIn","fields":{"Mode":1,"CMRMessage":[2,255]}}
{"block":"DiffCorrIn","fields":{"Mode":3,"RTCMVMessage":[7]}}
{"block":"DiffCorrIn","fields":{"Mode":2,"Source":2,"RTCM3Message":[211,13]}})";
    const std::string log = runTool({"encode", "-"}, blocks).output;
    const std::pair<QStringList, std::string> expected[] = {
        {{"rtcm2"}, "\x01\x02\0\0"s},
        {{"cmr"}, "\x02\xff"s},
        {{"rtcm3"}, "\xd3\0\n\xd3\r"s},
        {{"rtcmv"}, "\a"s},
        {{"rtcm3", "--where", "Source == 'COM2'"}, "\xd3\r"s},
    };
    for (const auto& [mode, payload] : expected) {
        const ToolRun run = runTool(QStringList{"extract", "-", "--mode"} + mode, log);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.words, "");
        EXPECT_EQ(run.output, payload) << mode.first().toStdString();
    }
}

TEST(Extract, WritesWhatCameBetweenTheBlocks)
{
    const std::string log = testData("tool/data/mixed.tqx");
    const std::string gga = "$GPGGA,1159";
    const std::string place = ".00,4704.20021,N,01527.00038,E,1,12,0.4,367.726,M,44.500,M,,*";
    const std::string zda = "$GPZDA,115942.00,06,01,2026,00,00*";
    const size_t frames[] = {log.find("\xd3\x00\x15"s), log.find("\xd3\x00\x32"s)};
    const std::string station = log.substr(frames[0], 27);
    const std::pair<const char*, std::string> expected[] = {
        {"nmea", gga + "42" + place + "69\r\n" + zda + "6D\r\n" +
                     "!AIVDM,1,1,,A,13u?etPv2;0n:dDPwUM1U1Cb069D,0*24\r\n" + gga + "43" + place +
                     "68\r\n"},
        {"rtcm3", station + log.substr(frames[1], 56) + station},
        {"ascii", "Status of the receiver\r\n  up: 17 s\r\n\r\nCOM1>"},
    };
    for (const auto& [kind, bytes] : expected) {
        const ToolRun run = runTool({"extract", "-q", "--between", kind, "-"}, log);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.words, "");
        EXPECT_EQ(run.output, bytes) << kind;
    }
}

// A sentence has no time of its own: it goes with the block before it.
TEST(Extract, TimesChooseAmongNeighbours)
{
    const std::string log = runTool({"simulate", "--mixed", "--duration", "10"}).output;
    const ToolRun run = runTool(
        {"extract", "--between", "nmea", "--from", "2400:216004", "--to", "2400:216006", "-"}, log);
    const std::vector<std::string> lines = linesOf(run.output);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].substr(0, 17), "$GPGGA,115946.00,");
    EXPECT_EQ(lines[1].substr(0, 17), "$GPGGA,115947.00,");
}
