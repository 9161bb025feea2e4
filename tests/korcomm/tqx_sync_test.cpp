#include "StreamBuilder.h"
#include "TqxSync.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{

QByteArray array(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

TEST(TqxSync, SignalsDamageAndReturnsBlocks)
{
    TqxSync sync;
    std::string log;
    QObject::connect(&sync, &TqxSync::CRCError, [&] { log += "checksum "; });
    QObject::connect(&sync, &TqxSync::invalidLength, [&] { log += "length "; });
    QObject::connect(&sync, &TqxSync::droppedBytes,
                     [&](uint32_t count) { log += std::to_string(count) + ' '; });
    const Bytes intact = blockOfSize(20);
    sync.appendBytes(
        array(text("abc") + falseHeader(3) + flipped(intact, 9) + intact + cut(intact, 6)));
    EXPECT_EQ(log, "length checksum 31 ");
    EXPECT_TRUE(sync.hasBlock());
    EXPECT_EQ(sync.getBlockBytes(), array(intact));
    EXPECT_FALSE(sync.hasBlock());
    EXPECT_TRUE(sync.getBlockBytes().isEmpty());
    EXPECT_EQ(sync.getNumberOfBytesLeft(), 6);
    sync.flush();
    EXPECT_EQ(log, "length checksum 31 6 ");
    EXPECT_EQ(sync.getNumberOfBytesLeft(), 0);
}

TEST(TqxSync, ReceiversMayCallBack)
{
    TqxSync sync;
    std::vector<QByteArray> blocks;
    const QByteArray intact = array(blockOfSize(20));
    unsigned dropped = 0;
    QObject::connect(&sync, &TqxSync::invalidLength, [&] {
        sync.appendBytes(intact);
        blocks.push_back(sync.getBlockBytes());
        EXPECT_EQ(blocks.back().size() + static_cast<int>(dropped) + sync.getNumberOfBytesLeft(),
                  48);
    });
    QObject::connect(&sync, &TqxSync::droppedBytes, [&](uint32_t count) { dropped += count; });
    sync.appendBytes(array(falseHeader(3)) + intact);
    while (sync.hasBlock()) {
        blocks.push_back(sync.getBlockBytes());
    }
    EXPECT_EQ(blocks, (std::vector<QByteArray>{intact, intact}));
    EXPECT_EQ(dropped, 8U);
}

TEST(TqxSync, SignalsReachOtherThreads)
{
    int argumentCount = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const QObject receiver; // of this thread
    TqxSync sync;
    std::string log;
    QObject::connect(&sync, &TqxSync::CRCError, &receiver, [&] { log += "checksum "; });
    QObject::connect(&sync, &TqxSync::droppedBytes, &receiver,
                     [&](uint32_t count) { log += std::to_string(count) + ' '; });
    std::thread([&] {
        sync.appendBytes(array(flipped(blockOfSize(20), 9) + blockOfSize(20)));
    }).join();
    EXPECT_EQ(log, "");
    QCoreApplication::processEvents();
    EXPECT_EQ(log, "checksum 20 ");
}

} // namespace
