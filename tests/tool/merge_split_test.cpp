#include "Packed.h"
#include "TemporaryFolder.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>

#include <algorithm>
#include <filesystem>

// Logs in parts, and parts as one log.

namespace
{

const std::string& simulated()
{
    static const std::string log =
        runTool({"simulate", "--duration", "120", "--seed", "4"}).output; // from 12:00:00 on
    return log;
}

std::string contentOf(const TemporaryFolder& folder, const std::string& name)
{
    const Bytes bytes = folder.read(name);
    return {bytes.begin(), bytes.end()};
}

Bytes bytesOf(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::vector<std::string> namesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

struct SplitCase {
    const char* name;
    QStringList options;
    std::vector<std::string> parts; ///< in their order
};

void PrintTo(const SplitCase& value, std::ostream* stream)
{
    *stream << value.name;
}

class SplitTest : public testing::TestWithParam<SplitCase>
{
};

} // namespace

TEST_P(SplitTest, GivesTheBlocksOfTheLogInParts)
{
    const TemporaryFolder folder;
    const std::string log = folder.write("day.tqx.gz", gzipped(bytesOf(simulated() + "junk")));
    std::filesystem::create_directories(folder.fileName("out"));
    QStringList arguments = {"split", QString::fromStdString(log)};
    for (const QString& option : GetParam().options)
        arguments << QString(option).replace("OUT", QString::fromStdString(folder.fileName("out")));
    const ToolRun run = runTool(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.words.find("4 bytes belong to no block"), std::string::npos) << run.words;

    std::vector<std::string> sorted = GetParam().parts;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(namesIn(folder.fileName("out")), sorted);
    std::string all;
    std::string list;
    for (const std::string& part : GetParam().parts) {
        const std::string bytes = contentOf(folder, "out/" + part);
        all += bytes;
        list += folder.fileName("out") + "/" + part + ": " +
                std::to_string(rawLines(bytes).size()) + " blocks, " +
                std::to_string(bytes.size()) + " bytes\n";
    }
    EXPECT_TRUE(all == simulated());
    EXPECT_EQ(run.output, list);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, SplitTest,
    testing::Values(SplitCase{"every",
                              {"--every", "1min", "-o", "OUT"},
                              {"day-20260106T120000.tqx", "day-20260106T120100.tqx"}},
                    // From the beginning of GNSS time on, which is no multiple of it before 12:00.
                    SplitCase{"aligned",
                              {"--every", "77s", "-o", "OUT/{number}-{time}"},
                              {"0001-20260106T115938", "0002-20260106T120055"}},
                    SplitCase{"all", {"--every", "1d", "-o", "OUT"}, {"day-20260106T000000.tqx"}},
                    SplitCase{"size",
                              {"--size", "300kB", "-o", "OUT"},
                              {"day-0001.tqx", "day-0002.tqx", "day-0003.tqx"}}),
    [](const auto& instance) { return instance.param.name; });

TEST(Split, HoldsTheSize)
{
    const TemporaryFolder folder;
    const QString target = QString::fromStdString(folder.fileName("{number}"));
    EXPECT_EQ(runTool({"split", "-", "--size", "100kB", "-o", target}, simulated()).status, 0);
    std::vector<std::string> names = namesIn(folder.fileName(""));
    ASSERT_EQ(names.size(), simulated().size() / 100000 + 1);
    names.pop_back();
    for (const std::string& name : names) {
        EXPECT_LE(contentOf(folder, name).size(), 100000U) << name;
        EXPECT_GT(contentOf(folder, name).size(), 90000U) << name;
    }
}

TEST(Split, BeginsAFileWhereTimeRunsBack)
{
    const TemporaryFolder folder;
    const QString target = QString::fromStdString(folder.fileName(""));
    const std::string late = runTool({"cut", "--from", "2400:216100", "-"}, simulated()).output;
    EXPECT_EQ(runTool({"split", "-", "--every", "1min", "-o", target}, late + simulated()).status,
              0);
    EXPECT_EQ(namesIn(folder.fileName("")),
              (std::vector<std::string>{"log-20260106T120000.tqx", "log-20260106T120100-2.tqx",
                                        "log-20260106T120100.tqx"}));
    EXPECT_TRUE(contentOf(folder, "log-20260106T120100.tqx") == late);
    QStringList merge = {"merge", "-q"};
    for (const std::string& name : namesIn(folder.fileName("")))
        merge << QString::fromStdString(folder.fileName(name));
    EXPECT_TRUE(runTool(merge).output == simulated());
}

TEST(Split, KeepsBlocksWithoutTimeWithThoseBefore)
{
    const TemporaryFolder folder;
    const auto blockAt = [](const std::string& tow) {
        return runTool({"encode", "-"},
                       R"({"block":"EndOfPVT1","fields":{"TOW":)" + tow + R"(,"WNc":2400}})")
            .output;
    };
    const std::string untimed = blockAt("4294967295");
    const std::string stream =
        untimed + blockAt("1000") + untimed + blockAt("60000") + blockAt("59000") + untimed;
    const QString target = QString::fromStdString(folder.fileName("{number}"));
    EXPECT_EQ(runTool({"split", "-", "--every", "1min", "-o", target}, stream).status, 0);
    const size_t half = stream.size() / 2;
    EXPECT_EQ(namesIn(folder.fileName("")), (std::vector<std::string>{"0001", "0002"}));
    EXPECT_TRUE(contentOf(folder, "0001") == stream.substr(0, half));
    EXPECT_TRUE(contentOf(folder, "0002") == stream.substr(half));
}

TEST(Merge, GivesTheLogOfOverlappingParts)
{
    const TemporaryFolder folder;
    const auto part = [&](const char* name, const char* from, const char* to) {
        const std::string bytes =
            runTool({"cut", "--from", from, "--to", to, "-"}, simulated()).output;
        EXPECT_FALSE(bytes.empty());
        return bytes + name;
    };
    const std::string last =
        folder.write("last.tqx.gz", gzipped(bytesOf(part("junk", "2400:216070", "2400:216500"))));
    const std::string first =
        folder.write("first.tqx", bytesOf(part("", "2400:215000", "2400:216040")));
    const std::string middle = part("", "2400:216030", "2400:216090");
    const QString target = QString::fromStdString(folder.fileName("all.tqx"));
    const ToolRun run = runTool({"merge", QString::fromStdString(last), "-",
                                 QString::fromStdString(first), "-o", target, "--strict"},
                                middle);
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.words.find("last.tqx.gz: "), std::string::npos) << run.words;
    EXPECT_NE(run.words.find(": 4 bytes belong to no block"), std::string::npos) << run.words;
    EXPECT_NE(run.words.find(" duplicates were dropped"), std::string::npos);
    EXPECT_TRUE(contentOf(folder, "all.tqx") == simulated());

    const ToolRun quiet = runTool({"merge", "-q", QString::fromStdString(last), target});
    EXPECT_EQ(quiet.words, "");
    EXPECT_EQ(quiet.status, 0);
    EXPECT_TRUE(quiet.output == simulated());
}

TEST(Merge, ReportsTimeThatRunsBack)
{
    const TemporaryFolder folder;
    const std::string late = runTool({"cut", "--from", "2400:216100", "-"}, simulated()).output;
    const ToolRun run = runTool({"merge", "-"}, late + simulated());
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.words.find("tqx: standard input: " + std::to_string(late.size()) +
                             ": time runs back by 119.000 s"),
              0U)
        << run.words;
    EXPECT_TRUE(run.output.substr(0, late.size()) == late);
}

TEST(Merge, ReadsMoreInputsThanMayBeOpenAtFirst)
{
    const TemporaryFolder folder;
    const std::string log = folder.write("log.tqx", bytesOf(simulated()));
    const auto mergeUnder = [&](const QString& limits) {
        QProcess shell;
        shell.start("sh", {"-c", limits + R"(; set --; i=0
                                  while [ $i -lt 60 ]; do set -- "$@" "$LOG"; i=$((i + 1)); done
                                  exec "$TQX" merge -q "$@")"});
        EXPECT_TRUE(shell.waitForFinished());
        EXPECT_EQ(shell.readAllStandardOutput().toStdString() == simulated(),
                  shell.exitCode() == 0);
        return shell.readAllStandardError().toStdString();
    };
    qputenv("TQX", TQX_TOOL);
    qputenv("LOG", log.c_str());
    EXPECT_EQ(mergeUnder("ulimit -S -n 40"), "");
    EXPECT_EQ(mergeUnder("ulimit -n 40"),
              "tqx: 60 inputs at the same time exceed the system's limit of 40 open "
              "files (see ulimit -n)\n");
}

TEST(MergeAndSplit, SayWhatTheyCannotDo)
{
    const TemporaryFolder folder;
    const QString log =
        QString::fromStdString(folder.write("0001.tqx", bytesOf(simulated().substr(0, 20000))));
    const QString pattern = QString::fromStdString(folder.fileName("{number}.tqx"));
    const struct {
        QStringList arguments;
        std::string words;
    } cases[] = {
        {{"split", log}, "--every or --size is required"},
        {{"split", log, "--every", "1y"}, "'1y' is not a duration, such as 30s"},
        {{"split", log, "--every", "0.0001s"}, "is not 1 ms to 3650 d"},
        {{"split", log, "--every", "1h", "--size", "1MB"}, "--every excludes --size"},
        {{"split", log, "--size", "1MB", "-o", "all{name}"}, "one of {number} and {time}"},
        {{"split", log, "--size", "1MB", "-o", "{no}"}, "{no} is none of"},
        {{"split", log, "--size", "1MB", "-o", pattern}, "0001.tqx is an input"},
        {{"split", log, "missing", "--size", "1MB", "-o", pattern}, "missing: No such file"},
        {{"split", "--size", "1MB", "tool/golden/help.txt", "-o", pattern}, "holds no TQX blocks"},
        {{"merge", log, "-o", log}, "is an input"},
        {{"merge", log, "missing", "-o", pattern}, "missing: No such file"},
        {{"merge", "tool/golden/help.txt"}, "holds no TQX blocks"},
    };
    for (const auto& [arguments, words] : cases) {
        const ToolRun run = runTool(arguments);
        EXPECT_EQ(run.status, 1) << words;
        EXPECT_NE(run.words.find(words), std::string::npos) << run.words;
    }
    EXPECT_EQ(namesIn(folder.fileName("")), std::vector<std::string>{"0001.tqx"});
    EXPECT_EQ(contentOf(folder, "0001.tqx").size(), 20000U);
}
