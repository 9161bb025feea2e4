#include "QtPrinters.h"
#include "Toy.h"

#include <AbstractDecoder.h>

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <set>

namespace
{

/// Switches types, decodes nothing.
class SwitchingDecoder final : public AbstractDecoder
{
public:
    explicit SwitchingDecoder(const MessageInfo* info)
        : AbstractDecoder(QStringLiteral("Switching"), nullptr)
    {
        setMessageEnum(info, 7);
    }
    int32_t decodeMessage(const uint8_t*, uint32_t) override { return 0; }
    void enableAllMessages() override {}
    void disableAllMessages() override {}
    void enableMessageEnum(int32_t messageEnum) override { m_enabled.insert(messageEnum); }
    void disableMessageEnum(int32_t messageEnum) override { m_enabled.erase(messageEnum); }
    bool isEnabledMessageEnum(int32_t messageEnum) const override
    {
        return m_enabled.count(messageEnum) != 0;
    }

private:
    std::set<int32_t> m_enabled = {-1};
};

TEST(AbstractDecoder, SwitchesTypesByTheirMetadata)
{
    const ToyInfo known(QStringLiteral("Known"));
    const ToyInfo unknown(QStringLiteral("Unknown"));
    SwitchingDecoder decoder(&known);
    EXPECT_EQ(decoder.getMessageEnum(&known), 7);
    EXPECT_FALSE(decoder.isEnabled(&known));
    EXPECT_TRUE(decoder.enableMessage(&known));
    EXPECT_TRUE(decoder.isEnabled(&known));
    EXPECT_TRUE(decoder.disableMessage(&known));
    EXPECT_FALSE(decoder.isEnabled(&known));

    EXPECT_EQ(decoder.getMessageEnum(&unknown), -1);
    EXPECT_FALSE(decoder.isEnabled(&unknown));
    EXPECT_FALSE(decoder.enableMessage(&unknown));
    EXPECT_FALSE(decoder.disableMessage(nullptr));
    EXPECT_TRUE(decoder.isEnabledMessageEnum(-1)) << "no type, no switch";
}

/// Notes events, as a host does that connects with the older syntax.
class Listener : public QObject
{
    Q_OBJECT

public:
    QStringList log;

public Q_SLOTS:
    void onEvent(MessageApiEvent event)
    {
        log += QString::number(event.getType()) + ' ' + event.getText() + ' ' +
               event.getFormatInfo()->getName();
    }
    void onUnknown(const FormatInfo* format, QString description)
    {
        log += format->getName() + ' ' + description;
    }
};

TEST(MessageSource, EventsTravelThroughEveryConnection)
{
    int argumentCount = 1;
    char name[] = "framework_tests";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const ToyFormat format(QStringLiteral("Toy"));
    const QStringList expected = {"Toy type 9", "3 Unknown message Toy"};

    for (const Qt::ConnectionType type : {Qt::DirectConnection, Qt::QueuedConnection}) {
        MessageSource source;
        Listener listener;
        QObject::connect(&source, SIGNAL(newEvent(MessageApiEvent)), &listener,
                         SLOT(onEvent(MessageApiEvent)), type);
        QObject::connect(&source, SIGNAL(newUnknownMessage(const FormatInfo*, QString)), &listener,
                         SLOT(onUnknown(const FormatInfo*, QString)), type);
        source.newUnknownMessage(&format, QStringLiteral("type 9"));
        source.newEvent(MessageApiEvent(MessageApiEvent::UnknownMessage,
                                        QStringLiteral("Unknown message"), &format));
        EXPECT_EQ(listener.log, type == Qt::DirectConnection ? expected : QStringList());
        QCoreApplication::sendPostedEvents(&listener);
        EXPECT_EQ(listener.log, expected);
    }
}

} // namespace

#include "decoder_base_test.moc"
