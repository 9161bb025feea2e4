#pragma once

#include <AbstractDecoder.h>

/// Decodes weather messages. The first byte is the message enum; what follows is little-endian:
///
///     1  u16 station, i16 temperature, u8 sky, u8 whether there is a pressure, f32 pressure if so,
///        u8 characters, the note, u8 gusts, and for each u8 second, f32 speed
///     2  u16 station, u32 millivolts
class WeatherDecoder : public AbstractDecoder
{
    Q_OBJECT

public:
    static constexpr int32_t observationEnum = 1;
    static constexpr int32_t batteryEnum = 2;

    enum Result : int32_t { Unknown = -1, Truncated = -2, Disabled = -3 };

    explicit WeatherDecoder(QObject* parent = nullptr);

    /// Bytes used, or a Result.
    int32_t decodeMessage(const uint8_t* buffer, uint32_t maxlength) override;
    void enableAllMessages() override;
    void disableAllMessages() override;
    void enableMessageEnum(int32_t messageEnum) override;
    void disableMessageEnum(int32_t messageEnum) override;
    bool isEnabledMessageEnum(int32_t messageEnum) const override;

private:
    void publish(const Message* message);
    int32_t fail(Result result, MessageApiEvent::Type type, const QString& text);

    uint32_t m_enabled = 0;
};
