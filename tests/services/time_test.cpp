#include "Blocks.h"
#include "TQXDecoder.h"
#include "TQXUtils.h"
#include "TqxTimeSource.h"

#include "FormatInfo.h"
#include "Message.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{

constexpr uint64_t invalidMillis = 0xffffffffffffffff;
constexpr uint32_t invalidTOW = 0xffffffff;
constexpr uint16_t invalidWNc = 0xffff;

// Decodes a block and shows its message around.
void withMessageOf(const QByteArray& bytes, const std::function<void(const Message*)>& look)
{
    TQX_FormatInfo::getInstance();
    TQXDecoder decoder;
    bool seen = false;
    QObject::connect(&decoder, &MessageSource::newMessage, [&](const Message* message) {
        seen = true;
        look(message);
    });
    decoder.decodeMessage(bytesOf(bytes), sizeOf(bytes));
    EXPECT_TRUE(seen);
}

bool isNow(uint64_t millis)
{
    TimeSource clock(nullptr);
    return millis <= clock.getMillis() && millis + 60000 > clock.getMillis();
}

TEST(TQXUtils, TimeOfAMessage)
{
    const struct {
        uint32_t timeOfWeek;
        uint16_t week;
        uint64_t millis;
        uint64_t ofTimeSource;
    } rows[] = {
        {345600000, 2000, 1209945600000, 1209945600000},
        {0, 0, 0, 0},
        {4294967294, 65534, 604800000ULL * 65534 + 4294967294, 604800000ULL * 65534 + 4294967294},
        {invalidTOW, 2000, invalidMillis, 0},
        {345600000, invalidWNc, invalidMillis, 0},
    };
    TqxTimeSource timeSource;
    for (const auto& row : rows) {
        withMessageOf(pvtGeodetic2(row.timeOfWeek, row.week), [&](const Message* message) {
            EXPECT_EQ(TQXUtils::getTOW(message), row.timeOfWeek);
            EXPECT_EQ(TQXUtils::getWNc(message), row.week);
            EXPECT_EQ(TQXUtils::getGNSSMillis(message), row.millis);
            EXPECT_EQ(timeSource.getMillis(message), row.ofTimeSource);
        });
    }
}

TEST(TQXUtils, SubMessagesHaveNoTime)
{
    TqxTimeSource timeSource;
    withMessageOf(measEpoch2(1), [&](const Message* message) {
        const Message* channel = message->getSubMessages().at(0);
        for (int call = 0; call < 2; ++call) {
            EXPECT_EQ(TQXUtils::getTOW(channel), invalidTOW);
            EXPECT_EQ(TQXUtils::getWNc(channel), invalidWNc);
            EXPECT_EQ(TQXUtils::getGNSSMillis(channel), invalidMillis);
        }
        EXPECT_TRUE(isNow(timeSource.getMillis(channel)));
    });
}

// Another format whose messages have fields of the same names and attributes.
class ForeignInfo : public MessageInfo
{
public:
    ForeignInfo() : MessageInfo(QStringLiteral("Foreign"))
    {
        const MessageInfo* info = TQX_FormatInfo::getInstance()->getMessageInfo("PVTGeodetic2");
        for (const char* name : {"TOW", "WNc"}) {
            addFieldInfo(const_cast<FieldInfo*>(info->getFieldInfo(name)), 0, false);
        }
    }
    ~ForeignInfo() override = default;
};

class ForeignMessage : public Message
{
public:
    explicit ForeignMessage(const MessageInfo* info) : Message(info) {}
    QString getRawStringFor(const QVector<bool>&) const override { return {}; }

private:
    const void* getRawRepresentation() const override { return nullptr; }
};

TEST(TQXUtils, MessagesOfOtherFormatsHaveNoTime)
{
    const ForeignInfo info;
    const ForeignMessage message(&info);
    EXPECT_NE(info.getFieldInfo("TOW"), nullptr);
    EXPECT_EQ(TQXUtils::getTOW(&message), invalidTOW);
    EXPECT_EQ(TQXUtils::getWNc(&message), invalidWNc);
    EXPECT_EQ(TQXUtils::getGNSSMillis(&message), invalidMillis);
}

TEST(TqxTimeSource, FallsBackToItsClock)
{
    TqxTimeSource timeSource;
    EXPECT_TRUE(timeSource.hasValidMillis());
    EXPECT_TRUE(isNow(timeSource.getMillis()));
    EXPECT_TRUE(isNow(timeSource.getMillis(nullptr)));
    EXPECT_EQ(timeSource.millisToString(1000), "1970-01-01T00:00:01.000Z");

    // Navigation messages carry the time of the satellite.
    Kor::MessageApi::TQX_GPSNav_s record;
    TQX_init_GPSNav(&record);
    record.TOW = 1000;
    record.WNc = 2000;
    withMessageOf(encoded(TQX_encode_GPSNav, record), [&](const Message* message) {
        EXPECT_EQ(TQXUtils::getGNSSMillis(message), 1209600001000U);
        EXPECT_TRUE(isNow(timeSource.getMillis(message)));
    });
}

} // namespace
