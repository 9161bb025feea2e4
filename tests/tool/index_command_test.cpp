#include "Tool.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace
{

void write(const QString& path, const std::string& bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

} // namespace

TEST(IndexCommand, SavesAnIndexAndSaysWhatTheLogHolds)
{
    const QTemporaryDir folder;
    const QString log = folder.filePath("log");
    const std::string name = log.toStdString();
    const std::string stream = runTool({"encode", "tool/data/documented.jsonl"}).output;
    const std::string holds = "611 bytes, 9 blocks of 9 types, 2026-01-06T12:00:00.000 to "
                              "2026-01-06T12:00:02.000 GPS, 0 bytes belong to no block\n";
    write(log, stream);

    ToolRun run = runTool({"index", "--show", log});
    EXPECT_EQ(run.output, name + ": indexed, " + holds);
    EXPECT_EQ(run.status, 0);
    EXPECT_FALSE(QFile::exists(log + ".tqxi"));

    run = runTool({"index", log});
    EXPECT_EQ(run.output, name + ": indexed, " + holds);
    EXPECT_TRUE(QFile::exists(log + ".tqxi"));
    run = runTool({"index", "--list", log});
    const std::vector<std::string> lines = linesOf(run.output);
    ASSERT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[0] + '\n', name + ": index is up to date, " + holds);
    EXPECT_EQ(lines[1], "         1  PVTGeodetic2 (4007)");
    EXPECT_EQ(lines[9], "         1  block 8191");

    write(log, stream + stream);
    EXPECT_EQ(runTool({"index", log}).output.rfind(name + ": indexed further, 1222 bytes, 18", 0),
              0U);

    write(log + ".tqxi", "not an index");
    run = runTool({"index", log, folder.filePath("missing")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output.rfind(name + ": indexed, 1222 bytes, 18", 0), 0U);
    EXPECT_EQ(run.words, "tqx: " + name + ".tqxi: is not used, it is no index\ntqx: " +
                             folder.filePath("missing").toStdString() +
                             ": No such file or directory\n");
}
