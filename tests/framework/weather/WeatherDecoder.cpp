#include "WeatherDecoder.h"

#include "WeatherFormat.h"
#include "WeatherMessages.h"

#include <cstring>

namespace
{

/// Reads numbers in turn; once something is missing it stays failed and reads zeros.
class Reader
{
public:
    Reader(const uint8_t* bytes, uint32_t size) : m_bytes(bytes), m_size(size) {}

    uint32_t integer(uint32_t size)
    {
        uint32_t value = 0;
        if (take(size)) {
            for (uint32_t i = 0; i < size; ++i) {
                value |= static_cast<uint32_t>(m_bytes[m_at - size + i]) << (8 * i);
            }
        }
        return value;
    }
    uint8_t byte() { return static_cast<uint8_t>(integer(1)); }
    uint16_t word() { return static_cast<uint16_t>(integer(2)); }
    float real()
    {
        const uint32_t bits = integer(4);
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    QByteArray text(uint32_t size)
    {
        return take(size) ? QByteArray(reinterpret_cast<const char*>(m_bytes + m_at - size),
                                       static_cast<int>(size))
                          : QByteArray();
    }
    bool failed() const { return m_failed; }
    int32_t used() const { return static_cast<int32_t>(m_at); }

private:
    bool take(uint32_t size)
    {
        m_failed = m_failed || m_size - m_at < size;
        m_at += m_failed ? 0 : size;
        return !m_failed;
    }

    const uint8_t* m_bytes;
    uint32_t m_size;
    uint32_t m_at = 0;
    bool m_failed = false;
};

ObservationRecord readObservation(Reader& reader)
{
    ObservationRecord record;
    record.station = reader.word();
    record.temperature = static_cast<int16_t>(reader.word());
    record.sky = reader.byte();
    record.hasPressure = reader.byte() != 0;
    record.pressure = record.hasPressure ? reader.real() : 0;
    record.note = reader.text(reader.byte());
    for (unsigned left = reader.byte(); left > 0 && !reader.failed(); --left) {
        const uint8_t second = reader.byte();
        record.gusts.push_back({second, reader.real()});
    }
    return record;
}

BatteryRecord readBattery(Reader& reader)
{
    const uint16_t station = reader.word();
    return {station, reader.integer(4)};
}

} // namespace

WeatherDecoder::WeatherDecoder(QObject* parent) : AbstractDecoder(QStringLiteral("Weather"), parent)
{
    enableAllMessages();
    setMessageEnum(WeatherFormat::infoOf<ObservationRecord>(), observationEnum);
    setMessageEnum(WeatherFormat::infoOf<BatteryRecord>(), batteryEnum);
}

int32_t WeatherDecoder::decodeMessage(const uint8_t* buffer, uint32_t maxlength)
{
    Reader reader(buffer, maxlength);
    const int32_t messageEnum = reader.byte();
    if (messageEnum != observationEnum && messageEnum != batteryEnum) {
        newUnknownMessage(WeatherFormat::getInstance(),
                          QStringLiteral("Message %1").arg(messageEnum));
        return fail(Unknown, MessageApiEvent::UnknownMessage, QStringLiteral("Unknown message"));
    }
    if (!isEnabledMessageEnum(messageEnum)) {
        return fail(Disabled, MessageApiEvent::DecodingError, QStringLiteral("Disabled message"));
    }
    const Message* message = nullptr;
    if (messageEnum == observationEnum) {
        message = new ObservationMessage(readObservation(reader));
    } else {
        message = new BatteryMessage(readBattery(reader));
    }
    if (reader.failed()) {
        delete message;
        return fail(Truncated, MessageApiEvent::DecodingError, QStringLiteral("Message too short"));
    }
    publish(message);
    return reader.used();
}

void WeatherDecoder::publish(const Message* message)
{
    message->addReference();
    newMessageEarly(message);
    newMessage(message);
    newMessageLate(message);
    message->removeReference();
}

int32_t WeatherDecoder::fail(Result result, MessageApiEvent::Type type, const QString& text)
{
    newEvent(MessageApiEvent(type, text, WeatherFormat::getInstance()));
    return result;
}

void WeatherDecoder::enableAllMessages()
{
    m_enabled = ~0u;
}

void WeatherDecoder::disableAllMessages()
{
    m_enabled = 0;
}

void WeatherDecoder::enableMessageEnum(int32_t messageEnum)
{
    m_enabled |= 1u << messageEnum;
}

void WeatherDecoder::disableMessageEnum(int32_t messageEnum)
{
    m_enabled &= ~(1u << messageEnum);
}

bool WeatherDecoder::isEnabledMessageEnum(int32_t messageEnum) const
{
    return (m_enabled >> messageEnum & 1u) != 0;
}
