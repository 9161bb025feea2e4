#include "QtPrinters.h"
#include "Toy.h"

#include <MessageSource.h>

#include <QCoreApplication>

#include <gtest/gtest.h>

namespace
{

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

#include "message_source_test.moc"
