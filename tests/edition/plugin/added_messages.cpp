// Types that others add to a build are built types: they have message classes, metadata and a place
// in the registry. Reports what is not so and exits with 1 then.

#include "TQXDecoder.h"
#include "TQX_FormatInfo.h"
#include "TQX_PumpState_Message.h"
#include "TQX_Pump_Message.h"
#include "TQX_codec.h"

#include "FieldInfo.h"
#include "MessageApiEvent.h"
#include "MessageInfo.h"
#include "PathExpression.h"

#include <QByteArray>
#include <QStringList>

#include <cstdio>

using namespace Kor::MessageApi;

namespace
{

int failures = 0;

void check(const char* what, const QString& actual, const QString& expected)
{
    if (actual == expected)
        return;
    ++failures;
    std::fprintf(stderr, "%s: '%s' instead of '%s'\n", what, qPrintable(actual),
                 qPrintable(expected));
}

QByteArray pumpState()
{
    TQX_PumpState_s record;
    TQX_init_PumpState(&record);
    record.TOW = 216000000;
    record.WNc = 2400;
    record.Flow = 4025;
    if (TQX_Pump_s* pump = TQX_append_PumpState_Pumps(&record)) {
        pump->Index = 1;
        pump->Mode = 2;
        pump->MSB = 1;
        pump->LSB = 5;
    }
    QByteArray bytes(1000, '\0');
    const int bits =
        TQX_encode_PumpState(reinterpret_cast<unsigned char*>(bytes.data()), 1000, &record);
    TQX_release(&record);
    bytes.truncate(bits > 0 ? bits / 8 : 0);
    return bytes;
}

void checkRegistry(const FormatInfo& format)
{
    const MessageInfo* block = format.getMessageInfo(QStringLiteral("PumpState"));
    const MessageInfo* pump = format.getMessageInfo(QStringLiteral("Pump"));
    if (block == nullptr || pump == nullptr)
        return check("registry", "incomplete", "PumpState and Pump");
    check("number", block->getAttribute(QStringLiteral("blocknr")).toString(), "7001");
    check("text", block->getShortDescriptiveText(), "State of the pumps");
    check("kinds", QStringLiteral("%1 %2").arg(block->isMain()).arg(pump->isMain()), "1 0");
    const FieldInfo* flow =
        PathExpression::getUniqueFieldInfo(QStringLiteral("TQX:PumpState:Flow"));
    check("unit of a field", flow ? flow->getUnit() : QString(), "percent");
    const FieldInfo* turns = pump->getFieldInfo(QStringLiteral("Turns"));
    check("derived field", turns && turns->isVirtual() ? turns->getType().toString() : QString(),
          "u64");
}

QString valueOf(const Message& message, const char* field)
{
    const FieldInfo* info = message.getInfo()->getFieldInfo(QLatin1String(field));
    return info ? info->getValueString(&message) : QStringLiteral("(no field)");
}

void checkMessage(const Message* published)
{
    const auto* message = dynamic_cast<const TQX_PumpState_Message*>(published);
    if (message == nullptr || message->getNumberOfPumps() != 1)
        return check("message", "none with its pump", "PumpState with one pump");
    const TQX_Pump_Message& pump = *message->getPumps(0);
    check("getters", QStringLiteral("%1 %2").arg(message->getFlow()).arg(pump.getTurns()),
          "4025 4294967301");
    check("values",
          valueOf(*message, "Flow") + "; " + valueOf(pump, "Mode") + "; " + valueOf(pump, "Turns"),
          "40.25 percent; Full; 4,294,967,301");
}

} // namespace

int main()
{
    checkRegistry(*TQX_FormatInfo::getInstance());
    TQXDecoder decoder;
    QStringList published;
    QObject::connect(&decoder, &MessageSource::newMessage, [&](const Message* message) {
        published += message->getInfo()->getName();
        checkMessage(message);
    });
    QObject::connect(&decoder, &MessageSource::newEvent,
                     [&](const MessageApiEvent& event) { published += event.getText(); });
    const QByteArray bytes = pumpState();
    const auto decode = [&] {
        decoder.decodeMessage(reinterpret_cast<const uint8_t*>(bytes.constData()),
                              static_cast<uint32_t>(bytes.size()));
    };
    const auto type = static_cast<int32_t>(TQX_recordType(7001));
    decode();
    decoder.disableMessageEnum(type);
    decode();
    check("published", published.join(QStringLiteral(", ")),
          "PumpState, TQX: TQX_ERR_PUMPSTATE_DISABLED");
    return failures == 0 ? 0 : 1;
}
