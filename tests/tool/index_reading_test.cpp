#include "Tool.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <ostream>
#include <zlib.h>

// What commands show of a log with an index beside it is what they show without.

namespace
{

struct Request {
    const char* name;
    QStringList arguments;
};

void PrintTo(const Request& value, std::ostream* stream)
{
    *stream << value.name;
}

void write(const QString& path, const std::string& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

/// Logs of several kinds with their indexes, made once.
const QStringList& indexedLogs()
{
    static const QTemporaryDir folder;
    static const QStringList logs = [] {
        const std::string damaged =
            runTool({"simulate", "--duration", "40", "--damage", "--mixed"}).output;
        const QStringList names = {folder.filePath("damaged.tqx"), folder.filePath("packed.tqx"),
                                   folder.filePath("random.tqx"), folder.filePath("cut.tqx")};
        write(names[0], damaged);
        gzFile packed = gzopen(names[1].toLocal8Bit().constData(), "wb");
        gzwrite(packed, damaged.data(), static_cast<unsigned>(damaged.size()));
        gzclose(packed);
        const std::string random = testData("data/samples/random-damaged.tqx");
        write(names[2], random);
        write(names[3], random.substr(0, random.size() - 7));
        EXPECT_EQ(runTool(QStringList{"index"} + names).status, 0);
        return names;
    }();
    return logs;
}

class ReadByIndex : public testing::TestWithParam<Request>
{
};

} // namespace

TEST_P(ReadByIndex, ShowsTheSame)
{
    size_t shown = 0;
    for (const QString& log : indexedLogs()) {
        const ToolRun by = runTool(GetParam().arguments + QStringList{log});
        const ToolRun without = runTool(GetParam().arguments + QStringList{"--no-index", log});
        EXPECT_EQ(by.status, without.status) << log.toStdString();
        EXPECT_EQ(by.output, without.output) << log.toStdString();
        EXPECT_EQ(by.words, without.words) << log.toStdString();
        shown += by.output.size() + by.words.size();
    }
    EXPECT_GT(shown, 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, ReadByIndex,
    testing::Values(
        Request{"Text", {"dump", "--type", "PVT*", "--strict"}},
        Request{"Lines", {"dump", "--not-type", "MeasEpoch2", "--format", "jsonl", "-v"}},
        Request{"RawLines", {"dump", "--type", "MeasEpoch2", "--format", "jsonl", "--raw"}},
        Request{"Table", {"dump", "--type", "PVTGeodetic2", "--format", "csv"}},
        Request{"From", {"dump", "--from", "2400:216010"}},
        Request{"To", {"dump", "--to", "2400:216010.5", "-v"}},
        Request{"FromTo", {"cut", "--from", "2300:604000", "--to", "2400:216020", "--strict"}},
        Request{"Condition", {"dump", "--type", "PVT*", "--where", "NrSV >= 5", "--every", "3"}},
        Request{"Limit", {"dump", "--from", "2300:0", "--limit", "7", "-v", "--strict"}},
        Request{"Interval", {"cut", "--type", "PVT*", "--interval", "5"}},
        Request{"UnknownNumber", {"cut", "--type", "8000", "--strict"}},
        Request{"Info", {"info", "--type", "MeasEpoch2,PVT*"}},
        Request{"InfoOfATime", {"info", "--json", "--from", "2400:216010", "--strict"}},
        Request{"InfoWithLimit", {"info", "--type", "PVT*", "--limit", "3"}},
        Request{"Corrections", {"extract", "--mode", "rtcm3", "--from", "2300:0"}},
        Request{"Sentences", {"extract", "--between", "nmea", "--to", "2400:216010"}}),
    [](const auto& instance) { return instance.param.name; });

// A bad byte since then in a block that is not asked for is not looked at.
TEST(IndexReading, ReadsOnlyWhatIsAskedFor)
{
    const QTemporaryDir folder;
    const QString log = folder.filePath("log.tqx");
    std::string stream = runTool({"simulate", "--duration", "60"}).output;
    const std::string positions = runTool({"cut", "--type", "PVTGeodetic2", "-"}, stream).output;
    const std::string other = runTool({"cut", "--type", "MeasEpoch2", "-"}, stream).output;
    write(log, stream);
    ASSERT_EQ(runTool({"index", log}).status, 0);
    // Beyond what an index knows its log by.
    const size_t at = stream.find(other.substr(other.size() / 2, 40));
    ASSERT_NE(at, std::string::npos);
    ASSERT_GT(at, 70000U);
    ASSERT_LT(at, stream.size() - 70000);
    stream[at + 20] ^= 1;
    write(log, stream);

    const ToolRun by = runTool({"cut", "--type", "PVTGeodetic2", "--strict", log});
    EXPECT_EQ(by.words, "");
    EXPECT_EQ(by.status, 0);
    EXPECT_EQ(by.output, positions);
    const ToolRun without =
        runTool({"cut", "--type", "PVTGeodetic2", "--strict", "--no-index", log});
    EXPECT_NE(without.words.find("1 bad checksum"), std::string::npos) << without.words;
    EXPECT_EQ(without.status, 2);
    EXPECT_EQ(without.output, positions);
}

TEST(IndexReading, UsesNoIndexOfAnotherLog)
{
    const QTemporaryDir folder;
    const QString log = folder.filePath("log.tqx");
    const std::string stream = testData("data/samples/random.tqx");
    write(log, stream);
    ASSERT_EQ(runTool({"index", log}).status, 0);
    const std::string rest = stream.substr(stream.size() / 2);
    for (const std::string& other : {rest, stream + rest, std::string("text\n")}) {
        write(log, other);
        const ToolRun by = runTool({"dump", "--from", "2300:0", log});
        const ToolRun without = runTool({"dump", "--from", "2300:0", "--no-index", log});
        EXPECT_EQ(by.output, without.output);
        EXPECT_EQ(by.words, without.words);
        EXPECT_EQ(by.status, without.status);
    }
}
