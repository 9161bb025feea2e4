#include "QtPrinters.h"
#include "weather/WeatherDecoder.h"
#include "weather/WeatherFormat.h"
#include "weather/WeatherMessages.h"

#include <MemLeakTracer.h>

#include <QByteArray>
#include <QCoreApplication>

#include <gtest/gtest.h>

#include <vector>

namespace
{

const QByteArray observationBytes = QByteArray::fromHex("01"
                                                        "0700" // station 7
                                                        "ddff" // -3.5 degrees
                                                        "0c"
                                                        "01"
                                                        "00507d44" // 1013.25
                                                        "03"
                                                        "776574"
                                                        "01"
                                                        "03"
                                                        "00004841"); // 12.5
const QByteArray batteryBytes = QByteArray::fromHex("02"
                                                    "0900"
                                                    "39300000");

/// Notes what a source publishes, in order.
class Listener : public QObject
{
    Q_OBJECT

public:
    explicit Listener(MessageSource* source)
    {
        connect(source, &MessageSource::newMessageLate, this,
                [this](const Message* m) { note("late", m); });
        connect(source, &MessageSource::newMessage, this,
                [this](const Message* m) { note("normal", m); });
        connect(source, &MessageSource::newMessageEarly, this,
                [this](const Message* m) { note("early", m); });
        // As a host written with the older syntax connects.
        connect(source, SIGNAL(newEvent(MessageApiEvent)), SLOT(onEvent(MessageApiEvent)));
        connect(source, SIGNAL(newUnknownMessage(const FormatInfo*, QString)),
                SLOT(onUnknown(const FormatInfo*, QString)));
    }

    QStringList log;

public Q_SLOTS:
    void onEvent(MessageApiEvent event)
    {
        log += QStringLiteral("event %1 %2 %3")
                   .arg(event.getType())
                   .arg(event.getText(), event.getFormatInfo()->getName());
    }
    void onUnknown(const FormatInfo* format, QString description)
    {
        log += QStringLiteral("unknown %1 %2").arg(format->getName(), description);
    }

private:
    void note(const char* when, const Message* message)
    {
        log += QString::fromLatin1(when) + QLatin1Char(' ') + message->getInfo()->getName();
    }
};

class Decoder : public testing::Test
{
protected:
    int32_t decode(const QByteArray& bytes)
    {
        listener.log.clear();
        return decoder.decodeMessage(reinterpret_cast<const uint8_t*>(bytes.constData()),
                                     static_cast<uint32_t>(bytes.size()));
    }

    const WeatherFormat* format = WeatherFormat::getInstance();
    WeatherDecoder decoder;
    Listener listener{&decoder};
};

TEST_F(Decoder, PublishesEachMessageThreeTimesAndLetsItGo)
{
    const qint64 before = MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage"));
    EXPECT_EQ(decode(observationBytes), observationBytes.size());
    EXPECT_EQ(listener.log,
              (QStringList{"early Observation", "normal Observation", "late Observation"}));
    EXPECT_EQ(decode(batteryBytes), batteryBytes.size());
    EXPECT_EQ(listener.log, (QStringList{"early Battery", "normal Battery", "late Battery"}));
    EXPECT_EQ(MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage")), before);
}

TEST_F(Decoder, AReferenceKeepsAMessageAlive)
{
    const qint64 before = MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage"));
    const Message* kept = nullptr;
    QObject::connect(&decoder, &MessageSource::newMessage, [&kept](const Message* message) {
        message->addReference();
        kept = message;
    });
    decode(observationBytes);
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->getReferenceCount(), 1);
    EXPECT_EQ(MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage")), before + 2);
    const auto* gusts = kept->getInfo()->getFieldInfo(QStringLiteral("Gusts"));
    const Message* gust = gusts->getValue(kept, 0).getSubMessage();
    EXPECT_EQ(gust->getInfo()->getFieldInfo(QStringLiteral("Speed"))->getValue(gust, 0),
              FieldValue::f32(12.5f));
    kept->removeReference();
    EXPECT_EQ(MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage")), before);
}

TEST_F(Decoder, CopiesHaveTheirOwnReferenceCount)
{
    const auto* message = new BatteryMessage({1, 2});
    message->addReference();
    const BatteryMessage copy(*message);
    EXPECT_EQ(copy.getReferenceCount(), 0);
    auto* assigned = new BatteryMessage({3, 4});
    assigned->addReference();
    *assigned = *message;
    message->addReference();
    message->removeReference();
    EXPECT_EQ(message->getReferenceCount(), 1);
    EXPECT_EQ(assigned->getReferenceCount(), 1);
    message->removeReference();
    assigned->removeReference();
}

TEST_F(Decoder, ReportsWhatItCannotDecode)
{
    EXPECT_EQ(decode(QByteArray("\x09", 1)), WeatherDecoder::Unknown);
    EXPECT_EQ(listener.log,
              (QStringList{"unknown Weather Message 9", "event 3 Unknown message Weather"}));
    const qint64 before = MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage"));
    for (int size = 1; size < observationBytes.size(); ++size) {
        EXPECT_EQ(decode(observationBytes.left(size)), WeatherDecoder::Truncated) << size;
        EXPECT_EQ(listener.log, QStringList{"event 4 Message too short Weather"}) << size;
    }
    EXPECT_EQ(MemLeakTracer::getObjectCount(QStringLiteral("WeatherMessage")), before);
}

TEST_F(Decoder, SwitchesTypesByTheirMetadata)
{
    const MessageInfo* battery = WeatherFormat::infoOf<BatteryRecord>();
    const MessageInfo* observation = WeatherFormat::infoOf<ObservationRecord>();
    const MessageInfo* gust = WeatherFormat::infoOf<GustRecord>();
    EXPECT_EQ(decoder.getName(), "Weather");
    EXPECT_EQ(decoder.getMessageEnum(battery), WeatherDecoder::batteryEnum);
    EXPECT_EQ(decoder.getMessageEnum(gust), -1);

    EXPECT_TRUE(decoder.isEnabled(battery));
    EXPECT_TRUE(decoder.disableMessage(battery));
    EXPECT_FALSE(decoder.isEnabled(battery));
    EXPECT_FALSE(decoder.isEnabledMessageEnum(WeatherDecoder::batteryEnum));
    EXPECT_TRUE(decoder.isEnabled(observation));
    EXPECT_EQ(decode(batteryBytes), WeatherDecoder::Disabled);
    EXPECT_EQ(listener.log, QStringList{"event 4 Disabled message Weather"});
    EXPECT_TRUE(decoder.enableMessage(battery));
    EXPECT_EQ(decode(batteryBytes), batteryBytes.size());

    EXPECT_FALSE(decoder.enableMessage(gust));
    EXPECT_FALSE(decoder.disableMessage(nullptr));
    EXPECT_FALSE(decoder.isEnabled(gust));
}

TEST_F(Decoder, EventsTravelThroughQueuedConnections)
{
    int argumentCount = 1;
    char name[] = "framework_tests";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);

    Listener queued(&decoder);
    decoder.disconnect(&queued);
    QObject::connect(&decoder, SIGNAL(newEvent(MessageApiEvent)), &queued,
                     SLOT(onEvent(MessageApiEvent)), Qt::QueuedConnection);
    QObject::connect(&decoder, &MessageSource::newUnknownMessage, &queued, &Listener::onUnknown,
                     Qt::QueuedConnection);
    decode(QByteArray("\x09", 1));
    EXPECT_TRUE(queued.log.isEmpty());
    QCoreApplication::sendPostedEvents(&queued);
    EXPECT_EQ(queued.log, listener.log);
}

} // namespace

#include "decoder_test.moc"
