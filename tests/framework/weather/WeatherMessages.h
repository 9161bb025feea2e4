#pragma once

#include <Message.h>

#include <QByteArray>

#include <cstdint>
#include <vector>

/// The records of an imaginary weather station: an observation with its gusts, and the state of the
/// battery.
struct GustRecord {
    uint8_t second = 0;
    float speed = 0;
};

struct ObservationRecord {
    uint16_t station = 0;
    int16_t temperature = 0; ///< 0.1 degrees; -32768: none
    uint8_t sky = 0;         ///< bits 0 to 2 clouds, bit 3 rain
    bool hasPressure = false;
    float pressure = 0;
    QByteArray note;
    std::vector<GustRecord> gusts;
};

struct BatteryRecord {
    uint16_t station = 0;
    uint32_t millivolts = 0;
};

/// A message around a record that it holds.
template<typename Record>
class WeatherMessage : public Message
{
public:
    explicit WeatherMessage(Record record, Message* parent = nullptr);
    WeatherMessage(const WeatherMessage&) = default;
    WeatherMessage& operator=(const WeatherMessage&) = default;
    ~WeatherMessage() override;

    const Record& record() const { return m_record; }
    QString getRawStringFor(const QVector<bool>& fieldMask) const override;

    /// What describes messages with this record.
    static const MessageInfo* info();

private:
    const void* getRawRepresentation() const override { return &m_record; }

    Record m_record;
};

using GustMessage = WeatherMessage<GustRecord>;
using BatteryMessage = WeatherMessage<BatteryRecord>;

class ObservationMessage : public WeatherMessage<ObservationRecord>
{
public:
    explicit ObservationMessage(ObservationRecord record);
    ~ObservationMessage() override;

    QVector<Message*> getSubMessages() override { return m_gusts; }
    QVector<const Message*> getSubMessages() const override;

    /// Whether every gust reads the record that its place says; for tests of raw access.
    bool gustsReadOwnRecords() const;

private:
    QVector<Message*> m_gusts;
};
