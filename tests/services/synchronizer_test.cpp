#include "Blocks.h"
#include "TQXSynchronizer.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using Log = std::vector<std::string>;

struct Recorded {
    Recorded()
    {
        QObject::connect(&synchronizer, &AbstractSync::newEvent,
                         [this](const MessageApiEvent& event) { log.push_back(described(event)); });
    }

    TQXSynchronizer synchronizer;
    Log log;
};

TEST(TQXSynchronizer, EventsTellWhatIsWrong)
{
    QByteArray badChecksum = pvtGeodetic2();
    badChecksum[20] = static_cast<char>(badChecksum[20] ^ 1);
    const struct {
        const char* name;
        QByteArray bytes;
        Log log;
    } rows[] = {
        {"intact", {}, {}},
        {"junk", "abc", {"4 TQX: 3 bytes dropped"}},
        {"length",
         QByteArray("$@\0\0\0\0\x07\0", 8),
         {"4 TQX_ERR_INVALID_LENGTH", "4 TQX: 8 bytes dropped"}},
        {"checksum",
         badChecksum,
         {"4 TQX_ERR_INVALID_CRC",
          "4 TQX: " + std::to_string(badChecksum.size()) + " bytes dropped"}},
    };
    for (const auto& row : rows) {
        Recorded recorded;
        const QByteArray block = pvtGeodetic2();
        QByteArray bytes = row.bytes + block;
        recorded.synchronizer.appendBytes(bytes);
        EXPECT_EQ(recorded.log, row.log) << row.name;
        ASSERT_TRUE(recorded.synchronizer.hasBlock()) << row.name;
        EXPECT_EQ(recorded.synchronizer.getNumberOfBytesLeft(), block.size()) << row.name;
        EXPECT_EQ(recorded.synchronizer.getBlockBytes(), block) << row.name;
        EXPECT_FALSE(recorded.synchronizer.hasBlock()) << row.name;
        EXPECT_EQ(recorded.synchronizer.getNumberOfBytesLeft(), 0) << row.name;
    }
}

TEST(TQXSynchronizer, EndOfInputFreesWhatWaits)
{
    Recorded recorded;
    const QByteArray block = pvtGeodetic2();
    QByteArray bytes = QByteArray("$@\0\0\0\0\xff\xff", 8) + block;
    recorded.synchronizer.appendBytes(bytes);
    EXPECT_FALSE(recorded.synchronizer.hasBlock());
    recorded.synchronizer.flush();
    EXPECT_EQ(recorded.synchronizer.getBlockBytes(), block);
    EXPECT_EQ(recorded.log, Log{"4 TQX: 8 bytes dropped"});
}

} // namespace
