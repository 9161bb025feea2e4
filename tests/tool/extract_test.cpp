#include "Tool.h"

#include <gtest/gtest.h>

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
    using namespace std::string_literals;
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
