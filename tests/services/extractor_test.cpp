#include "Blocks.h"
#include "TQXDecoder.h"
#include "TQX_DiffCorrIn_Extractor.h"

#include "MemLeakTracer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

namespace
{

using Record = Kor::MessageApi::TQX_DiffCorrIn_s;

// A DiffCorrIn block of a mode; its payload counts up from 1.
QByteArray diffCorrIn(uint8_t mode, uint16_t length)
{
    const auto record = std::make_unique<Record>();
    TQX_init_DiffCorrIn(record.get());
    record->Mode = mode;
    record->Data_Byte_Length = length;
    for (unsigned i = 0; i < length; ++i) {
        const auto value = static_cast<uint8_t>(i + 1);
        switch (mode) {
        case 0:
            record->RTCM2Words[i / 4] |= uint32_t{value} << 8 * (i % 4);
            break;
        case 1:
            record->CMRMessage[i] = value;
            break;
        case 2:
            record->RTCM3Message[i] = value;
            break;
        default:
            record->RTCMVMessage[i] = value;
        }
    }
    return encoded(TQX_encode_DiffCorrIn, *record);
}

QByteArray payload(int length)
{
    QByteArray bytes(length, '\0');
    for (int i = 0; i < length; ++i) {
        bytes[i] = static_cast<char>(i + 1);
    }
    return bytes;
}

// Keeps what it is given.
class Target : public AbstractDecoder
{
    Q_OBJECT

public:
    Target() : AbstractDecoder(QStringLiteral("target"), nullptr) {}

    int32_t decodeMessage(const uint8_t* buffer, uint32_t maxlength) override
    {
        received.emplace_back(reinterpret_cast<const char*>(buffer), static_cast<int>(maxlength));
        return -1;
    }
    void enableAllMessages() override {}
    void disableAllMessages() override {}
    void enableMessageEnum(int32_t) override {}
    void disableMessageEnum(int32_t) override {}
    bool isEnabledMessageEnum(int32_t) const override { return true; }

    std::vector<QByteArray> received;
};

// Looks at each payload before it is decoded.
class WatchingExtractor : public TQX_DiffCorrIn_Extractor
{
public:
    using TQX_DiffCorrIn_Extractor::TQX_DiffCorrIn_Extractor;

    std::vector<QByteArray> seen;

protected:
    void preprocessRawData() override { seen.push_back(payload()); }
};

void decode(TQXDecoder& decoder, const QByteArray& bytes)
{
    EXPECT_GT(decoder.decodeMessage(bytesOf(bytes), sizeOf(bytes)), 0);
}

class ExtractorOfMode : public testing::TestWithParam<uint8_t>
{
};

TEST_P(ExtractorOfMode, PassesOnThePayloadsOfItsModeOnly)
{
    const uint8_t mode = GetParam();
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    Target target;
    WatchingExtractor extractor(&decoder, &target, mode);

    decode(decoder, pvtGeodetic2());
    for (uint8_t other = 0; other < 4; ++other) {
        decode(decoder, diffCorrIn(other, 24));
    }
    decode(decoder, diffCorrIn(mode, 0));
    const std::vector<QByteArray> expected = {payload(24), {}};
    EXPECT_EQ(target.received, expected);
    EXPECT_EQ(extractor.seen, expected);
}

INSTANTIATE_TEST_SUITE_P(All, ExtractorOfMode, testing::Values(0, 1, 2, 3));

TEST(DiffCorrInExtractor, ReportsItselfToTheTracer)
{
    TQX_FormatInfo::getInstance();
    const auto name = QStringLiteral("TQX_DiffCorrIn_Extractor");
    const qint64 before = MemLeakTracer::getObjectCount(name);
    {
        TQXDecoder decoder;
        Target target;
        const TQX_DiffCorrIn_Extractor extractor(&decoder, &target, 2);
        EXPECT_EQ(MemLeakTracer::getObjectCount(name), before + 1);
    }
    EXPECT_EQ(MemLeakTracer::getObjectCount(name), before);
}

TEST(DiffCorrInExtractorDeathTest, UnsupportedModeIsAnAssertion)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto extractUnsupported = [] {
        TQX_FormatInfo::getInstance();
        TQXDecoder decoder;
        Target target;
        const TQX_DiffCorrIn_Extractor extractor(&decoder, &target, 4);
        decode(decoder, diffCorrIn(4, 0));
    };
    EXPECT_EXIT(extractUnsupported(), testing::ExitedWithCode(1),
                "Unsupported DiffCorrIn Mode value");
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
