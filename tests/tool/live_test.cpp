#include "Tool.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>

// A receiver that is read while it sends.

namespace
{

constexpr int patience = 60000; // milliseconds

class Live : public testing::Test
{
protected:
    void start(const QStringList& arguments)
    {
        m_process.start(TQX_TOOL, arguments);
        ASSERT_TRUE(m_process.waitForStarted(patience));
    }

    void send(const std::string& bytes)
    {
        m_process.write(bytes.data(), static_cast<qint64>(bytes.size()));
        while (m_process.bytesToWrite() != 0)
            ASSERT_TRUE(m_process.waitForBytesWritten(patience));
    }

    static bool comesTrue(const std::function<bool()>& condition)
    {
        for (int waited = 0; !condition() && waited < patience; waited += 10)
            QThread::msleep(10);
        return condition();
    }

    QProcess m_process;
};

} // namespace

// The second piece comes right after the first, then nothing.
TEST_F(Live, RowsAreInTheirFilesAsTheyCome)
{
    const std::string log = runTool({"simulate", "--duration", "2"}).output;
    const QTemporaryDir folder;
    const std::filesystem::path table = folder.filePath("PVTGeodetic2.csv").toStdString();
    start({"dump", "--format", "csv", "--type", "PVTGeodetic2", "-", "-o", folder.path()});
    send(log);
    std::error_code error;
    ASSERT_TRUE(comesTrue([&] { return std::filesystem::exists(table, error); }));
    const uintmax_t first = std::filesystem::file_size(table);
    send(log);
    EXPECT_TRUE(comesTrue([&] { return std::filesystem::file_size(table) > first; }));
    m_process.closeWriteChannel();
    EXPECT_TRUE(m_process.waitForFinished(patience));
    EXPECT_EQ(m_process.exitCode(), 0);
}

// All but what a pipe holds has been read by then.
TEST_F(Live, InterruptionEndsTheInput)
{
    constexpr size_t pipeSize = 1 << 16;
    const std::string log = runTool({"simulate", "--size", "200000"}).output;
    start({"info", "-"});
    send(log);
    m_process.terminate();
    ASSERT_TRUE(m_process.waitForFinished(patience));
    EXPECT_EQ(m_process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(m_process.exitCode(), SIGTERM);
    EXPECT_EQ(m_process.readAllStandardError().toStdString(), "");
    std::istringstream summary(m_process.readAllStandardOutput().toStdString());
    std::string word;
    size_t bytes = 0;
    while (summary >> word && word != "bytes") {
    }
    EXPECT_TRUE(summary >> bytes);
    EXPECT_GE(bytes, log.size() - pipeSize);
}

namespace
{

/// "$@", a checksum of 0, `number` and `length`.
std::string falseHeader(uint16_t number, uint16_t length)
{
    return {'$',
            '@',
            '\0',
            '\0',
            static_cast<char>(number & 0xff),
            static_cast<char>(number >> 8),
            static_cast<char>(length & 0xff),
            static_cast<char>(length >> 8)};
}

struct Header {
    const char* name;
    uint16_t number;
    uint16_t length;
    bool isDoubtful; ///< without a pause
};

void PrintTo(const Header& value, std::ostream* stream)
{
    *stream << value.name;
}

class LiveHeader : public Live, public testing::WithParamInterface<Header>
{
protected:
    /// Whether the blocks after the header come out while the input is still open.
    bool comesOut(const QStringList& arguments, int milliseconds)
    {
        start(QStringList{"dump", "-q", "--format", "jsonl", "--description",
                          QString(TQX_TESTS_DIR "/schema/station.yaml"), "-"} +
              arguments);
        send(falseHeader(GetParam().number, GetParam().length) +
             runTool({"simulate", "--duration", "1"}).output);
        const bool isOut = m_process.waitForReadyRead(milliseconds);
        m_process.closeWriteChannel();
        EXPECT_TRUE(m_process.waitForFinished(patience));
        EXPECT_EQ(m_process.exitCode(), 0);
        EXPECT_NE(m_process.readAllStandardOutput().size(), 0);
        return isOut;
    }
};

constexpr int aWhile = 500; // milliseconds

} // namespace

TEST_P(LiveHeader, HoldsBackWithoutTheOption)
{
    EXPECT_FALSE(comesOut({}, aWhile));
}

TEST_P(LiveHeader, IsPassedAtOnceWhenItFitsNoType)
{
    EXPECT_EQ(comesOut({"--live", "--pause", "3600"}, GetParam().isDoubtful ? patience : aWhile),
              GetParam().isDoubtful);
}

TEST_P(LiveHeader, IsPassedAfterAPause)
{
    EXPECT_TRUE(comesOut({"--live", "--pause", "0.05"}, patience));
}

INSTANTIATE_TEST_SUITE_P(Tool, LiveHeader,
                         testing::Values(Header{"UnknownNumber", 3999, 0xffff, true},
                                         Header{"TooLongForItsType", 4007, 60000, true},
                                         Header{"MayBeABlock", 4027, 60000, false},
                                         Header{"TooLongForADescribedType", 7001, 60000, true},
                                         Header{"MayBeADescribedBlock", 7002, 60000, false},
                                         Header{"MayBeANewerRevision", 4007 + (7 << 13), 60000,
                                                false}),
                         [](const auto& instance) { return instance.param.name; });

// There is nothing after it that it could hold back.
TEST_F(Live, BlockMayComeInPiecesWithPauses)
{
    const std::string log = testData("data/samples/random.tqx");
    const std::string blocks = log.substr(0, 3000);
    start({"cut", "--live", "--pause", "0.01", "-"});
    for (size_t at = 0; at < blocks.size(); at += 300) {
        send(blocks.substr(at, 300));
        QThread::msleep(30);
    }
    m_process.closeWriteChannel();
    ASSERT_TRUE(m_process.waitForFinished(patience));
    EXPECT_EQ(m_process.readAllStandardOutput().toStdString(),
              runTool({"cut", "-"}, blocks).output);
}
