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
        process.start(TQX_TOOL, arguments);
        ASSERT_TRUE(process.waitForStarted(patience));
    }

    void send(const std::string& bytes)
    {
        process.write(bytes.data(), static_cast<qint64>(bytes.size()));
        while (process.bytesToWrite() != 0)
            ASSERT_TRUE(process.waitForBytesWritten(patience));
    }

    static bool comesTrue(const std::function<bool()>& condition)
    {
        for (int waited = 0; !condition() && waited < patience; waited += 10)
            QThread::msleep(10);
        return condition();
    }

    QProcess process;
};

} // namespace

// The second piece comes at once behind the first, then nothing.
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
    process.closeWriteChannel();
    EXPECT_TRUE(process.waitForFinished(patience));
    EXPECT_EQ(process.exitCode(), 0);
}

// All but what a pipe holds has been read by then.
TEST_F(Live, InterruptionEndsTheInput)
{
    constexpr size_t pipeSize = 1 << 16;
    const std::string log = runTool({"simulate", "--size", "200000"}).output;
    start({"info", "-"});
    send(log);
    process.terminate();
    ASSERT_TRUE(process.waitForFinished(patience));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(process.exitCode(), SIGTERM);
    EXPECT_EQ(process.readAllStandardError().toStdString(), "");
    std::istringstream summary(process.readAllStandardOutput().toStdString());
    std::string word;
    size_t bytes = 0;
    while (summary >> word && word != "bytes") {
    }
    EXPECT_TRUE(summary >> bytes);
    EXPECT_GE(bytes, log.size() - pipeSize);
}
