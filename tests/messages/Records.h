#pragma once

#include "TQX_FormatInfo.h"
#include "TQX_MessageFactory.h"
#include "TQX_Messages.h"
#include "TQX_codec.h"

#include "Message.h"
#include "MessageApiEvent.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

/// A new record with its starting values. The registry, which must come before any message, is
/// made first.
template<typename Record>
std::unique_ptr<Record> made(int (*init)(Record*))
{
    TQX_FormatInfo::getInstance();
    std::unique_ptr<Record> record(new Record);
    init(record.get());
    return record;
}

inline std::unique_ptr<Kor::MessageApi::TQX_MeasEpoch2_s> measEpoch2(unsigned channels)
{
    auto record = made(TQX_init_MeasEpoch2);
    for (unsigned i = 0; i < channels; ++i)
        TQX_append_MeasEpoch2_Type1(record.get())->RxChannel = static_cast<uint8_t>(i + 1);
    return record;
}

/// A status block of one battery.
inline std::unique_ptr<Kor::MessageApi::TQX_BatteryStatus_s> batteryStatus(uint8_t revision)
{
    auto record = made(TQX_init_BatteryStatus);
    record->Revision = revision;
    auto* battery = TQX_append_BatteryStatus_Battery(record.get());
    battery->Voltage = 12000;
    for (uint8_t i = 0; i < 3; ++i)
        battery->Reserved[i] = static_cast<uint8_t>(i + 1);
    return record;
}

/// Reads what Message lends to its descendants only.
struct RecordReader : Message {
    static const void* recordOf(const Message* message)
    {
        return (message->*&RecordReader::getRawRepresentationOf)(message);
    }
};

/// Text of the field access event that `access` throws; empty when it throws nothing.
template<typename Access>
std::string thrownText(Access access)
{
    try {
        access();
    } catch (const MessageApiEvent& event) {
        EXPECT_EQ(event.getType(), 6);
        EXPECT_EQ(event.getFormatInfo(), TQX_FormatInfo::getInstance());
        return event.getText().toStdString();
    }
    return {};
}
