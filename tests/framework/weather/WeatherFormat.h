#pragma once

#include <FormatInfo.h>

struct BatteryRecord;
struct GustRecord;
struct ObservationRecord;

/// The registry of the weather format, "Weather".
class WeatherFormat final : public FormatInfo
{
public:
    /// Sets the format up on the first call.
    static const WeatherFormat* getInstance();

    /// The type of messages with a record; the format must have been set up.
    template<typename Record>
    static const MessageInfo* infoOf();

private:
    WeatherFormat();
    void setUp();

    bool m_isSetUp = false;
};

template<>
const MessageInfo* WeatherFormat::infoOf<BatteryRecord>();
template<>
const MessageInfo* WeatherFormat::infoOf<GustRecord>();
template<>
const MessageInfo* WeatherFormat::infoOf<ObservationRecord>();
