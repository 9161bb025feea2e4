#include "TimedBlocks.h"
#include "Tool.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <iterator>
#include <random>

// The continuous time of a block counts the weeks that all blocks before it begin, whatever types
// are chosen.

namespace
{

constexpr uint16_t endOfMeas = 5922;
constexpr uint16_t endOfFix = 5921;
constexpr uint16_t weatherReport = 7001; // of a description

/// Stretches of blocks of one type, so that weeks pass in which a type has no block and its TOW
/// does not step back. There are blocks that do not decode and some of an unknown number, of which
/// the latter begin no week.
Bytes logOfManyWeeks()
{
    std::mt19937 random(7);
    constexpr uint16_t types[] = {endOfMeas, endOfFix, 4007, weatherReport, 8191};
    constexpr uint64_t millisPerWeek = Kor::MessageApi::TQX_millisPerWeek;
    Bytes log;
    uint64_t time = 100 * millisPerWeek;
    for (unsigned stretch = 0; stretch < 15; ++stretch) {
        const uint16_t type = types[stretch % 5];
        for (unsigned i = 0; i < 1500; ++i) {
            time += random() % 1000000;
            const Bytes next = timedBlock(type, static_cast<uint32_t>(time % millisPerWeek),
                                          static_cast<uint16_t>(time / millisPerWeek),
                                          type == weatherReport ? 16 : 2);
            log.insert(log.end(), next.begin(), next.end());
        }
    }
    return log;
}

class WeekRollover : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        const Bytes log = logOfManyWeeks();
        QFile file(m_log);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(reinterpret_cast<const char*>(log.data()), static_cast<qint64>(log.size()));
        file.close();
        if (GetParam()) {
            ASSERT_EQ(runTool({"index", m_log}).status, 0);
        }
    }

    std::string run(const QStringList& arguments) const
    {
        const ToolRun run = runTool(arguments + QStringList{"-q", m_log});
        EXPECT_EQ(run.status, 0) << run.words;
        return run.output;
    }

    QTemporaryDir m_folder;
    QString m_log = m_folder.filePath("log.tqx");
};

std::string content(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll().toStdString();
}

} // namespace

TEST_P(WeekRollover, IsSeenInBlocksOfOtherTypes)
{
    const QStringList lines = {"dump", "--format", "jsonl"};
    std::vector<std::string> wanted;
    for (const std::string& line : linesOf(run(lines))) {
        if (line.find("\"EndOfPVT1\"") != std::string::npos)
            wanted.push_back(line);
    }
    ASSERT_EQ(wanted.size(), 4500U);
    EXPECT_EQ(linesOf(run(lines + QStringList{"--type", "EndOfPVT1"})), wanted);
}

TEST_P(WeekRollover, IsSeenInBlocksOfDescriptions)
{
    const QStringList lines = {"dump", "--format", "jsonl"};
    const QStringList described = lines + QStringList{"--description", "schema/station.yaml"};
    const std::vector<std::string> whole = linesOf(run(described));
    for (const char* type : {"EndOfPVT1", "WeatherReport"}) {
        SCOPED_TRACE(type);
        std::vector<std::string> wanted;
        std::copy_if(whole.begin(), whole.end(), std::back_inserter(wanted),
                     [&](const std::string& line) {
                         return line.find('"' + std::string(type) + '"') != std::string::npos;
                     });
        EXPECT_EQ(wanted.size(), 4500U);
        EXPECT_EQ(linesOf(run(described + QStringList{"--type", type})), wanted);
    }
    const QStringList fixes = {"--type", "EndOfPVT1"};
    EXPECT_NE(run(lines + fixes), run(described + fixes));
}

TEST_P(WeekRollover, IsSeenInTables)
{
    const QString folder = m_folder.filePath("tables");
    run({"dump", "--format", "csv", "-o", folder});
    const std::string whole = content(folder + "/EndOfPVT1.csv");
    EXPECT_GT(whole.size(), 100000U);
    EXPECT_EQ(run({"dump", "--format", "csv", "--type", "EndOfPVT1"}), whole);
}

TEST_P(WeekRollover, IsSeenByConditions)
{
    const QStringList late = {"cut", "--where", "TOWc >= 1209600000 and TOWc < 3628800000"};
    const std::string wanted = runTool({"cut", "--type", "EndOfMeas", "-"}, run(late)).output;
    EXPECT_GT(wanted.size(), 16 * 100U);
    EXPECT_EQ(run(late + QStringList{"--type", "EndOfMeas"}), wanted);
}

INSTANTIATE_TEST_SUITE_P(Tool, WeekRollover, testing::Bool(), [](const auto& instance) {
    return std::string(instance.param ? "ByIndex" : "WithoutIndex");
});
