#include "Blocks.h"
#include "FieldRoles.h"
#include "RandomBlock.h"
#include "TQXDecoder.h"
#include "TQX_Layout.h"

#include "MemLeakTracer.h"
#include "Message.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

constexpr int pVTGeodetic2 = 110;
constexpr int invalidMessage = Kor::MessageApi::TQX_invalidMessage;
constexpr int lastEnum = Kor::MessageApi::TQX_lastRecordType;

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

const Log publishedNames = {"early PVTGeodetic2", "normal PVTGeodetic2", "late PVTGeodetic2"};
const Log unknownZero = {"3 TQX: Message type 0 unknown to PC software", "unknown Message type 0"};

TEST(TQXDecoder, ReturnsAndPublishesResults)
{
    const QByteArray whole = pvtGeodetic2();
    const int32_t bits = 8 * whole.size();
    const struct {
        const char* name;
        QByteArray bytes;
        int32_t result;
        Log log;
    } rows[] = {
        {"whole", whole, bits, publishedNames},
        {"bytes after it", whole + "xyz", bits, publishedNames},
        {"more than the longest block", whole + QByteArray(70000, 'x'), bits, publishedNames},
        {"a size of 65536", whole + QByteArray(65536 - whole.size(), 'x'), bits, publishedNames},
        {"empty", {}, invalidMessage, unknownZero},
        {"six bytes", whole.left(6), invalidMessage, unknownZero},
        {"unknown number",
         blockOfNumber(8191),
         invalidMessage,
         {"3 TQX: Message type 8191 unknown to PC software", "unknown Message type 8191"}},
    };
    for (const auto& row : rows) {
        Recorded recorded;
        EXPECT_EQ(recorded.decode(row.bytes), row.result) << row.name;
        EXPECT_EQ(recorded.log, row.log) << row.name;
    }
}

TEST(TQXDecoder, PublishesBlocksOfEveryTypeOrTheNameOfTheirFailure)
{
    Recorded recorded;
    std::mt19937_64 random(1);
    const QStringList objects = MemLeakTracer::getUnbalancedNames();
    int published = 0;
    int failed = 0;
    for (const TQX_TypeLayout* type : mainTypes()) {
        const std::vector<uint8_t> block = randomBlock(*type, {}, random);
        const std::string name = type->name;
        const auto decode = [&](size_t size) {
            recorded.log.clear();
            return recorded.decoder.decodeMessage(block.data(), static_cast<uint32_t>(size));
        };
        const auto eventOf = [](int32_t code) {
            return Log{std::string("4 TQX: ") + TQX_errorName(code)};
        };
        const Log whole =
            type->hasMessage ? Log{"early " + name, "normal " + name, "late " + name} : Log{};
        EXPECT_GT(decode(block.size()), 0) << name;
        EXPECT_EQ(recorded.log, whole) << name;
        published += type->hasMessage ? 1 : 0;

        // What is cut off may be padding.
        const int32_t result = decode(7 + random() % (block.size() - 7));
        EXPECT_EQ(recorded.log, result > 0 ? whole : eventOf(result)) << name;
        failed += result < 0 ? 1 : 0;

        recorded.decoder.disableMessageEnum(static_cast<int32_t>(type->recordType));
        EXPECT_EQ(decode(block.size()), type->disabled) << name;
        EXPECT_EQ(recorded.log, eventOf(type->disabled)) << name;
    }
    EXPECT_EQ(published, 221);
    EXPECT_GT(failed, 200);
    EXPECT_EQ(MemLeakTracer::getUnbalancedNames(), objects);
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

TEST(TQXDecoder, DecodesWhenInvokedByName)
{
    Recorded recorded;
    const QByteArray block = pvtGeodetic2();
    int32_t result = 0;
    EXPECT_TRUE(QMetaObject::invokeMethod(
        &recorded.decoder, "decodeMessage", Q_RETURN_ARG(int32_t, result),
        Q_ARG(const uint8_t*, bytesOf(block)), Q_ARG(uint32_t, sizeOf(block))));
    EXPECT_EQ(result, 8 * block.size());
    EXPECT_EQ(recorded.log, publishedNames);
}

TEST(TQXDecoder, ReceiversMayDecode)
{
    Recorded recorded;
    bool nested = false;
    QObject::connect(&recorded.decoder, &MessageSource::newEvent, [&] {
        if (!std::exchange(nested, true)) {
            recorded.decode(blockOfNumber(8190));
        }
    });
    recorded.decode(blockOfNumber(8191));
    EXPECT_EQ(recorded.log.back(), "unknown Message type 8191");
}

TEST(TQXDecoder, TypesAreSwitchedByNumberAndByInfo)
{
    Recorded recorded;
    TQXDecoder& decoder = recorded.decoder;
    const MessageInfo* info = TQX_FormatInfo::getInstance()->getMessageInfo("PVTGeodetic2");
    EXPECT_EQ(decoder.getMessageEnum(info), pVTGeodetic2);
    EXPECT_EQ(decoder.getMessageEnum(nullptr), -1);
    EXPECT_FALSE(decoder.enableMessage(nullptr) || decoder.disableMessage(nullptr));
    EXPECT_FALSE(decoder.isEnabled(nullptr));
    EXPECT_TRUE(decoder.disableMessage(info));
    EXPECT_FALSE(decoder.isEnabledMessageEnum(pVTGeodetic2));
    EXPECT_EQ(recorded.decode(pvtGeodetic2()), TQX_layout(pVTGeodetic2)->disabled);
    EXPECT_EQ(recorded.log, Log{"4 TQX: TQX_ERR_PVTGEODETIC2_DISABLED"});

    recorded.log.clear();
    decoder.enableMessageEnum(pVTGeodetic2);
    EXPECT_GT(recorded.decode(pvtGeodetic2()), 0);
    EXPECT_EQ(recorded.log, publishedNames);
}

TEST(TQXDecoder, AllTypesAreSwitchedButSubBlocks)
{
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    constexpr int subBlock = 156;
    const auto enabled = [&] {
        std::vector<int> numbers;
        for (int i = 0; i <= lastEnum; ++i) {
            if (decoder.isEnabledMessageEnum(i)) {
                numbers.push_back(i);
            }
        }
        return numbers;
    };
    const std::vector<int> mainTypes = enabled();
    EXPECT_EQ(mainTypes.size(), 243U);

    decoder.enableMessageEnum(subBlock);
    decoder.disableAllMessages();
    EXPECT_EQ(enabled(), std::vector<int>{subBlock});
    decoder.disableMessageEnum(subBlock);
    decoder.enableAllMessages();
    EXPECT_EQ(enabled(), mainTypes);

    // Bits of other types and memory beyond the mask stay as they are.
    for (const int outside :
         {-2147483647 - 1, -8, -1, lastEnum + 1, lastEnum + 2, 100000, 2147483647}) {
        decoder.enableMessageEnum(outside);
        EXPECT_FALSE(decoder.isEnabledMessageEnum(outside)) << outside;
        decoder.disableMessageEnum(outside);
    }
    EXPECT_EQ(enabled(), mainTypes);
}

} // namespace
