#include "Blocks.h"
#include "TQXDecoder.h"
#include "TQX_DiffCorrIn_Extractor.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <vector>

namespace
{

using Record = Kor::MessageApi::TQX_DiffCorrIn_s;

QByteArray diffCorrIn(uint8_t mode, const QByteArray& payload)
{
    const auto record = std::make_unique<Record>();
    TQX_init_DiffCorrIn(record.get());
    record->Mode = mode;
    record->Data_Byte_Length = static_cast<uint16_t>(payload.size());
    void* const members[] = {record->RTCM2Words, record->CMRMessage, record->RTCM3Message,
                             record->RTCMVMessage};
    if (mode < 4) {
        std::memcpy(members[mode], payload.constData(), static_cast<size_t>(payload.size()));
    }
    return encoded(TQX_encode_DiffCorrIn, *record);
}

// A well-known example of message 1005, with its frame and checksum.
const QByteArray rtcm3 = QByteArray::fromHex("d300133ed7d30202980edeef34b4bd62ac0941986f33360b98");

// What each mode carries: two words of 30 bits, a CMR frame, an RTCM 3 frame, an RTCMV text.
const QByteArray payloads[] = {QByteArray::fromHex("9a5b59668d72a13f"),
                               QByteArray::fromHex("02009302aabb6203"), rtcm3, "RTCMV,1"};

// CRC-24Q of RTCM 3; 0 over a frame that ends in its checksum.
uint32_t crc24q(const QByteArray& bytes)
{
    uint32_t sum = 0;
    for (const char byte : bytes) {
        sum ^= static_cast<uint32_t>(static_cast<uint8_t>(byte)) << 16;
        for (int bit = 0; bit < 8; ++bit) {
            sum <<= 1;
            sum ^= (sum & 0x1000000) != 0 ? 0x1864cfbU : 0U;
        }
    }
    return sum;
}

// A decoder of RTCM 3 that knows frames, and keeps all that it is given.
class Target : public AbstractDecoder
{
    Q_OBJECT

public:
    Target() : AbstractDecoder(QStringLiteral("target"), nullptr) {}

    int32_t decodeMessage(const uint8_t* buffer, uint32_t maxlength) override
    {
        const QByteArray bytes(reinterpret_cast<const char*>(buffer), static_cast<int>(maxlength));
        received.push_back(bytes);
        const bool isFrame = bytes.startsWith('\xd3') && crc24q(bytes) == 0;
        frames += isFrame ? 1 : 0;
        return isFrame ? 8 * bytes.size() : -1;
    }
    void enableAllMessages() override {}
    void disableAllMessages() override {}
    void enableMessageEnum(int32_t) override {}
    void disableMessageEnum(int32_t) override {}
    bool isEnabledMessageEnum(int32_t) const override { return true; }

    std::vector<QByteArray> received;
    int frames = 0;
};

// Looks at each payload before it is decoded, and may change it.
class WatchingExtractor : public TQX_DiffCorrIn_Extractor
{
public:
    using TQX_DiffCorrIn_Extractor::TQX_DiffCorrIn_Extractor;

    std::vector<QByteArray> seen;
    QByteArray added;

protected:
    void preprocessRawData() override
    {
        seen.push_back(payload());
        payload() += added;
    }
};

void decode(TQXDecoder& decoder, const QByteArray& bytes)
{
    EXPECT_GT(decoder.decodeMessage(bytesOf(bytes), sizeOf(bytes)), 0);
}

TEST(DiffCorrInExtractor, PassesOnThePayloadsOfItsModeOnly)
{
    TQX_FormatInfo::getInstance();
    for (uint8_t mode = 0; mode < 4; ++mode) {
        TQXDecoder decoder;
        Target target;
        WatchingExtractor extractor(&decoder, &target, mode);

        decode(decoder, pvtGeodetic2());
        for (uint8_t other = 0; other < 4; ++other) {
            decode(decoder, diffCorrIn(other, payloads[other]));
        }
        decode(decoder, diffCorrIn(mode, {}));
        const std::vector<QByteArray> expected = {payloads[mode], {}};
        EXPECT_EQ(extractor.seen, expected) << int{mode};
        EXPECT_EQ(target.received, expected) << int{mode};
        EXPECT_EQ(target.frames, mode == 2 ? 1 : 0);

        extractor.added = "more";
        decode(decoder, diffCorrIn(mode, payloads[mode]));
        EXPECT_EQ(target.received.back(), payloads[mode] + "more");
    }
}

TEST(DiffCorrInExtractorDeathTest, UnsupportedModeIsAnAssertion)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto extractUnsupported = [] {
        TQX_FormatInfo::getInstance();
        TQXDecoder decoder;
        Target target;
        const TQX_DiffCorrIn_Extractor extractor(&decoder, &target, 4);
        decode(decoder, diffCorrIn(4, {}));
    };
    // The process that dies begins the test again, with the file of the one that began it.
    std::optional<QTemporaryDir> folder;
    if (qEnvironmentVariableIsEmpty("KOR_TQX_LOGFILE"))
        qputenv("KOR_TQX_LOGFILE", folder.emplace().filePath("log").toLocal8Bit());
    const QByteArray path = qgetenv("KOR_TQX_LOGFILE");
    EXPECT_EXIT(extractUnsupported(), testing::ExitedWithCode(1),
                "Unsupported DiffCorrIn Mode value");
    qunsetenv("KOR_TQX_LOGFILE");
    QFile log(QString::fromLocal8Bit(path));
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(log.readAll().toStdString(),
              " ASRT: TQX_DiffCorrIn_Extractor Ln:  92 "
              "TQX_DiffCorrIn_Extractor::processNewMessageUnsupported DiffCorrIn Mode value\n"
              "Abnormal program termination...\n");
}

TEST(DiffCorrInExtractorDeathTest, NeedsTheMetadata)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto extractTooEarly = [] {
        MessageSource source;
        const TQX_DiffCorrIn_Extractor extractor(&source, nullptr, 2);
    };
    EXPECT_DEATH(extractTooEarly(),
                 "TQX format info not yet initialized. Extractor will not work.");
}

} // namespace

#include "extractor_test.moc"
