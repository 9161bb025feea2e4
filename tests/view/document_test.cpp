#include "Logs.h"

#include "model/LogDocument.h"
#include "model/TqxLog.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>
#include <zlib.h>

using namespace tqx::view;

namespace
{

QByteArray packed(const QByteArray& content)
{
    QByteArray result(content.size() + 1000, 0);
    z_stream stream = {};
    deflateInit2(&stream, 1, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    QByteArray input = content;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    deflate(&stream, Z_FINISH);
    result.resize(static_cast<int>(stream.total_out));
    deflateEnd(&stream);
    return result;
}

uint64_t countOf(const MessageLog& log)
{
    uint64_t count = 0;
    for (const MessageLog::Type& type : log.getTypes())
        count += type.count;
    return count;
}

/// Opens files and waits; what went wrong is in `reason`.
void open(LogDocument& document, const QStringList& paths, QString& reason)
{
    QObject::connect(&document, &LogDocument::failed,
                     [&reason](const QString& text) { reason = text; });
    document.open(paths);
    ASSERT_TRUE(waitFor([&] { return !document.isLoading(); }));
}

TEST(LogDocument, OpensPlainCompressedAndSeveralFiles)
{
    const QTemporaryDir folder;
    const QByteArray first = simulatedLog(3);
    const QByteArray second = simulatedLog(3, 3);
    const QString plain = writeFile(folder, "first.tqx", first);
    const QString gzip = writeFile(folder, "second.tqx.gz", packed(second));
    const QString both = writeFile(folder, "both.tqx", first + second);
    QString reason;
    LogDocument whole;
    open(whole, {both}, reason);
    LogDocument document;
    open(document, {plain, gzip}, reason);
    EXPECT_EQ(reason, "");
    ASSERT_TRUE(document.getLog());
    EXPECT_EQ(countOf(*document.getLog()), countOf(*whole.getLog()));
    EXPECT_EQ(document.getLog()->getSize(), whole.getLog()->getSize());
    EXPECT_FALSE(document.canFollow());
    EXPECT_TRUE(whole.canFollow());
    // Blocks of the compressed part are read anywhere.
    const uint32_t last = document.getLog()->getPageCount() - 1;
    const std::vector<MessageEntry> entries = document.getLog()->loadPage(last);
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(document.getLog()->load(entries.back()).bytes,
              whole.getLog()->load(entries.back()).bytes);
}

TEST(LogDocument, WhatCannotBeOpenedIsReported)
{
    const QTemporaryDir folder;
    const QString missing = folder.filePath("missing.tqx");
    QString reason;
    LogDocument document;
    open(document, {missing}, reason);
    EXPECT_TRUE(reason.startsWith(missing + ": ")) << qPrintable(reason);
    EXPECT_FALSE(document.getLog());
}

TEST(LogDocument, EmptyDamagedAndCutLogsOpen)
{
    const QTemporaryDir folder;
    const QByteArray log = simulatedLog(3);
    const struct {
        const char* name;
        QByteArray content;
        bool hasMessages;
        bool isWarned;
    } cases[] = {
        {"empty.tqx", {}, false, false},
        {"junk.tqx", QByteArray(100'000, '$'), false, false},
        {"damaged.tqx", logWithOutage(3), true, false},
        {"cut.tqx", log.left(log.size() / 2 + 7), true, false},
        {"cut.tqx.gz", packed(log).left(packed(log).size() / 2), true, true},
    };
    for (const auto& [name, content, hasMessages, isWarned] : cases) {
        QString reason;
        QString warning;
        LogDocument document;
        QObject::connect(&document, &LogDocument::warned,
                         [&](const QString& text) { warning = text; });
        open(document, {writeFile(folder, name, content)}, reason);
        EXPECT_EQ(reason, "") << name;
        ASSERT_TRUE(document.getLog()) << name;
        EXPECT_EQ(countOf(*document.getLog()) > 0, hasMessages) << name;
        EXPECT_EQ(!warning.isEmpty(), isWarned) << name << qPrintable(warning);
    }
}

TEST(LogDocument, FollowsAFileThatGrowsAndOneThatBeginsAnew)
{
    const QTemporaryDir folder;
    const QByteArray log = simulatedLog(4);
    const int part = log.size() / 2 + 11; // within a block
    const QString path = writeFile(folder, "live.tqx", log.left(part));
    QString reason;
    LogDocument document;
    open(document, {path}, reason);
    const uint64_t before = countOf(*document.getLog());
    bool isContinued = false;
    QObject::connect(&document, &LogDocument::opened,
                     [&](bool continued) { isContinued = continued; });
    document.setFollowing(true);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write(log.mid(part));
    file.close();
    const auto size = static_cast<uint64_t>(log.size());
    ASSERT_TRUE(waitFor([&] { return document.getLog()->getSize() == size; }));
    EXPECT_TRUE(isContinued);
    EXPECT_GT(countOf(*document.getLog()), before);

    LogDocument whole;
    open(whole, {writeFile(folder, "whole.tqx", log)}, reason);
    EXPECT_EQ(countOf(*document.getLog()), countOf(*whole.getLog()));

    writeFile(folder, "live.tqx", simulatedLog(1));
    ASSERT_TRUE(waitFor([&] { return document.getLog()->getSize() < size; }));
    EXPECT_FALSE(isContinued);
    EXPECT_EQ(reason, "");
}

TEST(LogDocument, ClosingWhileLoadingLeavesNothingBehind)
{
    const QTemporaryDir folder;
    const QString path = writeFile(folder, "log.tqx", simulatedLog(20));
    for (int i = 0; i < 20; ++i) {
        LogDocument document;
        document.open({path});
        if (i % 2 == 1)
            document.open({path}); // another one before the first is there
    }
    LogDocument document;
    document.open({path});
    document.close();
    int opened = 0;
    QObject::connect(&document, &LogDocument::opened, [&] { ++opened; });
    QCoreApplication::processEvents();
    EXPECT_FALSE(document.getLog());
    EXPECT_FALSE(document.isLoading());
    EXPECT_EQ(opened, 0);
}

} // namespace
