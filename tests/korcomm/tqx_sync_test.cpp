#include "StreamBuilder.h"
#include "TqxSync.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <memory>

namespace
{

QByteArray array(const Bytes& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())};
}

QByteArray sample(const char* name)
{
    QFile file(QStringLiteral(TEST_DATA_FOLDER "/samples/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll();
}

unsigned littleEndian16(const QByteArray& bytes, int at)
{
    return static_cast<uint8_t>(bytes.at(at)) |
           static_cast<unsigned>(static_cast<uint8_t>(bytes.at(at + 1))) << 8;
}

// A synchroniser and counts of what it signalled.
struct Listening {
    Listening()
    {
        QObject::connect(&sync, &TqxSync::CRCError, [this] { ++checksumErrors; });
        QObject::connect(&sync, &TqxSync::invalidLength, [this] { ++invalidLengths; });
        QObject::connect(&sync, &TqxSync::droppedBytes, [this](uint32_t count) {
            EXPECT_GT(count, 0U);
            dropped += count;
        });
    }

    void takeBlocks()
    {
        while (sync.hasBlock()) {
            blocks.push_back(sync.getBlockBytes());
        }
    }

    TqxSync sync;
    std::vector<QByteArray> blocks;
    unsigned checksumErrors = 0;
    unsigned invalidLengths = 0;
    uint64_t dropped = 0;
};

TEST(TqxSync, SignalsDamageAndReturnsBlocks)
{
    Listening listening;
    const Bytes intact = blockOfSize(20);
    listening.sync.appendBytes(
        array(text("abc") + falseHeader(3) + flipped(intact, 9) + intact + cut(intact, 6)));
    listening.takeBlocks();
    EXPECT_EQ(listening.blocks, std::vector<QByteArray>{array(intact)});
    EXPECT_EQ(listening.checksumErrors, 1U);
    EXPECT_EQ(listening.invalidLengths, 1U);
    EXPECT_EQ(listening.dropped, 31U);
    EXPECT_EQ(listening.sync.getNumberOfBytesLeft(), 6);
    EXPECT_TRUE(listening.sync.getBlockBytes().isEmpty());
    listening.sync.flush();
    EXPECT_EQ(listening.dropped, 37U);
    EXPECT_EQ(listening.sync.getNumberOfBytesLeft(), 0);
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

class SampleStream : public testing::TestWithParam<int>
{
};

TEST_P(SampleStream, DamagedOneGivesBackEveryIntactBlock)
{
    // The sound stream has nothing between its blocks: their lengths alone cut it.
    const QByteArray sound = sample("random.tqx");
    std::vector<QByteArray> soundBlocks;
    for (int at = 0; at < sound.size(); at += soundBlocks.back().size()) {
        soundBlocks.push_back(sound.mid(at, static_cast<int>(littleEndian16(sound, at + 6))));
    }
    ASSERT_EQ(soundBlocks.size(), 120U);

    const QByteArray damaged = sample("random-damaged.tqx");
    Listening listening;
    const int piece = GetParam();
    for (int at = 0; at < damaged.size(); at += piece) {
        listening.sync.appendBytes(damaged.mid(at, piece));
        listening.takeBlocks();
    }
    listening.sync.flush();
    listening.takeBlocks();

    const QJsonArray intact =
        QJsonDocument::fromJson(sample("random-damaged.json")).object()["intact"].toArray();
    ASSERT_EQ(listening.blocks.size(), static_cast<size_t>(intact.size()));
    ASSERT_GT(intact.size(), 0);
    uint64_t delivered = 0;
    for (int i = 0; i < intact.size(); ++i) {
        const QByteArray& found = listening.blocks[static_cast<size_t>(i)];
        delivered += static_cast<uint64_t>(found.size());
        if (intact[i].isString()) {
            const QString expected = QString("unknown %1").arg(littleEndian16(found, 4) & 0x1fff);
            EXPECT_EQ(intact[i].toString(), expected) << "block " << i;
        } else {
            EXPECT_EQ(found, soundBlocks.at(static_cast<size_t>(intact[i].toInt())))
                << "block " << i;
        }
    }
    EXPECT_EQ(delivered + listening.dropped, static_cast<uint64_t>(damaged.size()));
    EXPECT_GT(listening.checksumErrors, 0U);
    EXPECT_EQ(listening.sync.getNumberOfBytesLeft(), 0);
}

INSTANTIATE_TEST_SUITE_P(Pieces, SampleStream, testing::Values(1, 13, 1000, 1 << 20));

} // namespace
