#include "Blocks.h"
#include "TQXDecoder.h"
#include "TQXSynchronizer.h"
#include "TQX_Layout.h"

#include "MemLeakTracer.h"
#include "Message.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <vector>

using namespace Kor::MessageApi;

namespace
{

constexpr int kPVTGeodetic2 = 110;
constexpr int kMeasEpoch2 = 371;
constexpr int kInvalidMessage = -6072;

// A decoder and a log of what it published.
struct Recorded {
    Recorded()
    {
        const auto logMessage = [this](const char* signal) {
            return [this, signal](const Message* message) {
                log.push_back(signal + message->getInfo()->getName().toStdString());
            };
        };
        QObject::connect(&decoder, &MessageSource::newMessageLate, logMessage("late "));
        QObject::connect(&decoder, &MessageSource::newMessage, logMessage("normal "));
        QObject::connect(&decoder, &MessageSource::newMessageEarly, logMessage("early "));
        QObject::connect(&decoder, &MessageSource::newEvent,
                         [this](const MessageApiEvent& event) { log.push_back(described(event)); });
        QObject::connect(&decoder, &MessageSource::newUnknownMessage,
                         [this](const FormatInfo* format, const QString& text) {
                             EXPECT_EQ(format, TQX_FormatInfo::getInstance());
                             log.push_back("unknown " + text.toStdString());
                         });
    }

    int32_t decode(const QByteArray& bytes)
    {
        return decoder.decodeMessage(bytesOf(bytes), sizeOf(bytes));
    }

    const FormatInfo* const registry = TQX_FormatInfo::getInstance(); ///< before the decoder
    TQXDecoder decoder;
    std::vector<std::string> log;
};

using Log = std::vector<std::string>;

struct Row {
    const char* name;
    QByteArray bytes;
    int32_t result;
    Log log;
};

std::ostream& operator<<(std::ostream& out, const Row& row)
{
    return out << row.name;
}

class DecoderResults : public testing::TestWithParam<Row>
{
};

TEST_P(DecoderResults, AreReturnedAndPublished)
{
    Recorded recorded;
    recorded.decoder.disableMessageEnum(kMeasEpoch2);
    EXPECT_EQ(recorded.decode(GetParam().bytes), GetParam().result);
    EXPECT_EQ(recorded.log, GetParam().log);
}

const Log kPublished = {"early PVTGeodetic2", "normal PVTGeodetic2", "late PVTGeodetic2"};
const Log kUnknownZero = {"3 TQX: Message type 0 unknown to PC software", "unknown Message type 0"};

INSTANTIATE_TEST_SUITE_P(
    All, DecoderResults,
    testing::Values(
        Row{"Whole", pvtGeodetic2(), 8 * pvtGeodetic2().size(), kPublished},
        Row{"TrailingBytes", pvtGeodetic2() + "xyz", 8 * pvtGeodetic2().size(), kPublished},
        Row{"BytesBeyondTheLongest", pvtGeodetic2() + QByteArray(70000, 'x'),
            8 * pvtGeodetic2().size(), kPublished},
        Row{"SizeThatWouldWrapToZero",
            pvtGeodetic2() + QByteArray(65536 - pvtGeodetic2().size(), 'x'),
            8 * pvtGeodetic2().size(), kPublished},
        Row{"Empty", {}, kInvalidMessage, kUnknownZero},
        Row{"SixBytes", pvtGeodetic2().left(6), kInvalidMessage, kUnknownZero},
        Row{"UnknownNumber",
            blockOfNumber(8191),
            kInvalidMessage,
            {"3 TQX: Message type 8191 unknown to PC software", "unknown Message type 8191"}},
        Row{"Disabled",
            measEpoch2(3),
            TQX_layout(kMeasEpoch2)->disabled,
            {"4 TQX: TQX_ERR_MEASEPOCH2_DISABLED"}}),
    [](const auto& row) { return row.param.name; });

TEST(TQXDecoder, EventNamesTheCodeOfACutBlock)
{
    const QByteArray whole = measEpoch2(3);
    for (int size = 7; size < whole.size(); ++size) {
        Recorded recorded;
        const int32_t result = recorded.decode(whole.left(size));
        ASSERT_LT(result, 0) << size;
        EXPECT_EQ(recorded.log, Log{std::string("4 TQX: ") + TQX_errorName(result)}) << size;
    }
}

TEST(TQXDecoder, ReleasesUnlessAReceiverTakesAReference)
{
    const auto alive = [] {
        return MemLeakTracer::getObjectCount(QStringLiteral("TQX_MeasEpoch2_Message"));
    };
    const qint64 before = alive();
    Recorded recorded;
    recorded.decode(measEpoch2(2));
    EXPECT_EQ(alive(), before);

    const Message* kept = nullptr;
    QObject::connect(&recorded.decoder, &MessageSource::newMessageLate,
                     [&](const Message* message) {
                         message->addReference();
                         kept = message;
                     });
    recorded.decode(measEpoch2(2));
    EXPECT_EQ(alive(), before + 1);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->getSubMessages().size(), 2);
    kept->removeReference();
    EXPECT_EQ(alive(), before);
}

TEST(TQXDecoder, ReportsItselfToTheTracer)
{
    TQX_FormatInfo::getInstance();
    const qint64 before = MemLeakTracer::getObjectCount(QStringLiteral("TQXDecoder"));
    {
        const TQXDecoder decoder;
        EXPECT_EQ(decoder.getName(), QStringLiteral("TQX"));
        EXPECT_EQ(MemLeakTracer::getObjectCount(QStringLiteral("TQXDecoder")), before + 1);
    }
    EXPECT_EQ(MemLeakTracer::getObjectCount(QStringLiteral("TQXDecoder")), before);
}

TEST(TQXDecoder, TypesAreSwitchedByNumberAndByInfo)
{
    Recorded recorded;
    TQXDecoder& decoder = recorded.decoder;
    const MessageInfo* info = TQX_FormatInfo::getInstance()->getMessageInfo("PVTGeodetic2");
    EXPECT_EQ(decoder.getMessageEnum(info), kPVTGeodetic2);
    EXPECT_TRUE(decoder.disableMessage(info));
    EXPECT_FALSE(decoder.isEnabledMessageEnum(kPVTGeodetic2));
    EXPECT_EQ(recorded.decode(pvtGeodetic2()), TQX_layout(kPVTGeodetic2)->disabled);
    EXPECT_EQ(recorded.log, Log{"4 TQX: TQX_ERR_PVTGEODETIC2_DISABLED"});

    recorded.log.clear();
    decoder.enableMessageEnum(kPVTGeodetic2);
    EXPECT_GT(recorded.decode(pvtGeodetic2()), 0);
    EXPECT_EQ(recorded.log, kPublished);
}

TEST(TQXDecoder, AllTypesAreSwitchedButSubBlocks)
{
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    constexpr int kSubBlock = 156;
    const auto enabled = [&] {
        std::vector<int> numbers;
        for (int i = 0; i <= 382; ++i) {
            if (decoder.isEnabledMessageEnum(i)) {
                numbers.push_back(i);
            }
        }
        return numbers;
    };
    const std::vector<int> mainTypes = enabled();
    EXPECT_EQ(mainTypes.size(), 243U);

    decoder.enableMessageEnum(kSubBlock);
    decoder.disableAllMessages();
    EXPECT_EQ(enabled(), std::vector<int>{kSubBlock});
    decoder.disableMessageEnum(kSubBlock);
    decoder.enableAllMessages();
    EXPECT_EQ(enabled(), mainTypes);

    // Bits of other types and memory beyond the mask stay as they are.
    for (const int outside : {-2147483647 - 1, -8, -1, 383, 384, 100000, 2147483647}) {
        decoder.enableMessageEnum(outside);
        EXPECT_FALSE(decoder.isEnabledMessageEnum(outside)) << outside;
        decoder.disableMessageEnum(outside);
    }
    EXPECT_EQ(enabled(), mainTypes);
}

TEST(TQXDecoder, TypesWithoutMessageClassPublishNothing)
{
    Recorded recorded;
    int types = 0;
    for (uint32_t type = 1; type <= 382; ++type) {
        const TQX_TypeLayout* layout = TQX_layout(type);
        if (layout == nullptr || layout->hasMessage || layout->blockNumber == 0) {
            continue;
        }
        ++types;
        EXPECT_GT(recorded.decode(blockOfNumber(layout->blockNumber) + QByteArray(60000, '\0')), 0)
            << layout->name;
        EXPECT_EQ(recorded.log, Log{}) << layout->name;
    }
    if (types == 0) {
        GTEST_SKIP() << "no such type is described";
    }
}

TEST(TQXDecoder, DecodesAStreamThroughTheSynchronizer)
{
    Recorded recorded;
    TQXSynchronizer synchronizer;
    QByteArray stream = sample("random.tqx");
    synchronizer.appendBytes(stream);
    Log expected;
    for (const QByteArray& line : sample("random.jsonl").split('\n')) {
        if (!line.isEmpty()) {
            const QString name = QJsonDocument::fromJson(line).object()["block"].toString();
            for (const char* signal : {"early ", "normal ", "late "}) {
                expected.push_back(signal + name.toStdString());
            }
        }
    }
    while (synchronizer.hasBlock()) {
        EXPECT_GT(recorded.decode(synchronizer.getBlockBytes()), 0);
    }
    EXPECT_EQ(expected.size(), 360U);
    EXPECT_EQ(recorded.log, expected);
}

} // namespace
