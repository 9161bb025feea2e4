#include "Tool.h"
#include "tqx/log/record/TypeNames.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/PrintableText.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <fstream>

// Texts of logs, names of files and arguments that would command a terminal or fill it.

using nlohmann::json;

namespace
{

struct Case {
    std::string text;
    std::string shown;
};

// Latin-1: set the title, clear the screen, forge a line, and C1 characters that do the same.
const char* const hostile = "\x1b]0;owned\x07\x1b[2J\r\nASCIIIn (4075)  no time\x7f\x9b"
                            "1mA\xe9\x85";
const char* const hostileShown = "\\x1b]0;owned\\x07\\x1b[2J\\r\\nASCIIIn (4075)  no time\\x7f\\x9b"
                                 "1mA\xc3\xa9\\x85";

bool isControl(char character)
{
    const auto code = static_cast<unsigned char>(character);
    return (code < 0x20 && code != '\n') || code == 0x7f;
}

/// Control characters in UTF-8 other than the ends of lines.
bool hasControls(const std::string& text)
{
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '\xc2' && static_cast<unsigned char>(text[i + 1]) < 0xa0)
            return true;
    }
    return std::any_of(text.begin(), text.end(), isControl);
}

std::string hostileBlock()
{
    tqx::Buffer text;
    tqx::json::appendLatin1(text, hostile, std::strlen(hostile));
    const std::string line = R"({"block":"ASCIIIn","fields":{"TOW":1,"WNc":2400,"ASCIIString":)" +
                             std::string(text.view()) + "}}";
    const ToolRun run = runTool({"encode", "-"}, line);
    EXPECT_EQ(run.status, 0) << run.words;
    return run.output;
}

} // namespace

TEST(HostileText, IsEscapedInUtf8)
{
    const std::vector<Case> cases = {
        {"", ""},
        {"plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80",
         "plain \xc3\xa9 \xe2\x82\xac \xf0\x9f\x98\x80"},
        {"a\nb\rc\td", "a\\nb\\rc\\td"},
        {std::string("\0\x1b\x7f", 3), "\\x00\\x1b\\x7f"},
        {"\xc2\x9b|\xc2\x80|\xc2\xa0", "\\x9b|\\x80|\xc2\xa0"},
        {"\x9b", "\\x9b"},                            // alone, as an 8-bit terminal obeys it
        {"\xc0\x9b", "\\xc0\\x9b"},                   // longer than it needs to be
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},          // half of a pair
        {"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"}, // beyond the last character
        {"\xe2\x82", "\\xe2\\x82"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(tqx::printable(one.text), one.shown);
}

TEST(HostileText, IsShortenedBetweenCharacters)
{
    EXPECT_EQ(tqx::shortened("12345", 5), "12345");
    EXPECT_EQ(tqx::shortened("123456", 5), "12345...");
    EXPECT_EQ(tqx::shortened("1234\xc3\xa9", 5), "1234...");
}

TEST(HostileText, OfALogIsEscapedInTextDumps)
{
    const std::string output = runTool({"dump", "-"}, hostileBlock()).output;
    EXPECT_FALSE(hasControls(output)) << output;
    EXPECT_NE(output.find(std::string("ASCIIString  ") + hostileShown + "\n"), std::string::npos)
        << output;
}

TEST(HostileText, OfALogIsEscapedInExplanations)
{
    EXPECT_FALSE(hasControls(runTool({"explain", "-@0"}, hostileBlock()).output));
}

TEST(HostileText, OfALogIsEscapedInJson)
{
    for (const QStringList& more : {QStringList(), QStringList{"--raw"}}) {
        const std::string output =
            runTool(QStringList{"dump", "-", "--format", "jsonl"} + more, hostileBlock()).output;
        EXPECT_FALSE(hasControls(output)) << output;
        const std::string value = json::parse(output)["fields"]["ASCIIString"];
        tqx::Buffer expected;
        tqx::json::appendLatin1(expected, hostile, std::strlen(hostile));
        EXPECT_EQ(value, json::parse(expected.view()).get<std::string>());
        EXPECT_EQ(value.substr(0, 4), "\x1b]0;");
    }
    EXPECT_EQ(tqx::json::text("a\xc2\x9b\xc2\xa9\xc2"), "\"a\\u009b\xc2\xa9\xc2\"");
}

TEST(HostileText, InNamesOfFilesIsEscaped)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a\x1b[2J\nb.tqx");
    std::ofstream(path.toStdString(), std::ios::binary)
        << testData("data/samples/random-damaged.tqx");
    const std::vector<QStringList> commands = {{"info", "--json", path},
                                               {"info", path},
                                               {"info", path, path},
                                               {"dump", path},
                                               {"explain", path},
                                               {"explain", path + "@1"},
                                               {"info", folder.filePath("\x1b[2J")},
                                               {"encode", path},
                                               {"dump", "-o", folder.filePath("\x1b[2J/x"), path},
                                               {"cut", path, "-o", path}};
    for (const QStringList& command : commands) {
        const ToolRun run = runTool(command);
        EXPECT_FALSE(hasControls(run.words)) << run.words;
        EXPECT_FALSE(hasControls(run.output)) << run.output;
        EXPECT_EQ((run.words + run.output).find("\nb.tqx"), std::string::npos) << run.words;
    }
}

TEST(HostileText, InNamesThatAreNotKnownIsEscapedAndShort)
{
    const std::string name = "\x1b[2J\x7f" + std::string(2000, 'x');
    const QString argument = QString::fromStdString(name);
    const std::string quoted = json(name).dump();
    struct Run {
        QStringList arguments;
        std::string input;
    };
    const std::vector<Run> runs = {
        {{"dump", "--type", argument, "-"}, ""},
        {{"dump", "--type", argument + '*', "-"}, ""},
        {{"dump", "--field", argument, "-"}, ""},
        {{"dump", "--field", "MeasEpoch2." + argument, "-"}, ""},
        {{"dump", "--where", argument + " > 1", "-"}, ""},
        {{"dump", "--where", QString(3000, 'y') + " > 1", "-"}, ""},
        {{"dump", "--where", "PVTMode == '" + argument + "'", "-"}, ""},
        {{"dump", "--from", argument, "-"}, ""},
        {{"dump", "--every", argument, "-"}, ""},
        {{"dump", "--format", argument, "-"}, ""},
        {{"dump", "--" + argument, "-"}, ""},
        {{argument}, ""},
        {{"types", argument}, ""},
        {{"types", argument + '*'}, ""},
        {{"error", argument}, ""},
        {{"help", argument}, ""},
        {{"explain", "x@" + argument}, ""},
        {{"simulate", "--start", argument}, ""},
        {{"encode", "-"}, "{" + quoted + ":1}"},
        {{"encode", "-"}, R"({"block":)" + quoted + "}"},
        {{"encode", "-"}, R"({"block":"GPSNav","fields":{)" + quoted + ":1}}"},
        {{"encode", "-"}, R"({"block":"GPSNav","fields":{"PRN":)" + quoted + "}}"},
    };
    for (const Run& one : runs) {
        const ToolRun run = runTool(one.arguments, one.input);
        EXPECT_EQ(run.status, 1) << run.words;
        EXPECT_FALSE(hasControls(run.words)) << run.words;
        EXPECT_LT(run.words.size(), 700U) << one.arguments.join(' ').left(80).toStdString();
    }
}

// By full comparison with every name of a field it takes minutes.
TEST(HostileText, AsAnUnknownNameTakesNoTime)
{
    std::vector<std::string> paths;
    tqx::forEachType([&](const Kor::MessageApi::TQX_TypeLayout& type) {
        tqx::forEachField(type, [&](const std::string& path) { paths.push_back(path); });
    });
    const std::vector<std::string_view> names(paths.begin(), paths.end());
    for (const size_t length : {size_t{100}, size_t{1000000}}) {
        const auto start = std::chrono::steady_clock::now();
        const std::string text = tqx::unknownName("field", std::string(length, 'x'), names);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
        EXPECT_LT(text.size(), 200U);
    }
    EXPECT_EQ(tqx::nearest("Undulatin", names), "Undulation");
}
