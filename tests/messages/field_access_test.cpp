#include "Records.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <QLocale>

using namespace Kor::MessageApi;

namespace
{

// What the description must say for the getters of some fields to come out right.

TEST(FieldAccess, PresenceFollowsRevisionAndSelector)
{
    auto corrections = made(TQX_init_DiffCorrIn);
    auto set = made(TQX_init_ExtSensorMeasSet);
    auto epoch = measEpoch2(0);
    for (uint8_t value = 0; value < 8; ++value) {
        SCOPED_TRACE(int{value});
        epoch->Revision = value;
        EXPECT_EQ(TQX_MeasEpoch2_Message(epoch.get(), false).hasCumClkJumps(), value >= 1);
        auto status = batteryStatus(value);
        TQX_BatteryStatus_Message batteries(status.get(), false);
        EXPECT_EQ(batteries.getBattery(0)->hasVoltage(), value >= 1);
        EXPECT_EQ(batteries.getBattery(0)->hasReserved(), value >= 2);
        EXPECT_EQ(batteries.getBattery(0)->getReserved(2), 3) << "absent, but read all the same";
        corrections->Mode = value;
        const TQX_DiffCorrIn_Message message(corrections.get(), false);
        EXPECT_EQ(message.hasParity(), value == 0);
        EXPECT_EQ(message.hasRTCM3Message(), value == 2);
        set->Type = value;
        EXPECT_EQ(TQX_ExtSensorMeasSet_Message(set.get(), nullptr, false).hasInfo(), value == 3);
    }
}

TEST(FieldAccess, CountsOfRepeatedFields)
{
    auto string = made(TQX_init_ASCIIIn);
    const TQX_ASCIIIn_Message text(string.get(), false);
    EXPECT_EQ(text.getNumberOfSensorModel(), 21U);
    EXPECT_EQ(text.getSensorModelVector().last(), '\0');
    EXPECT_EQ(text.getNumberOfASCIIString(), 1U);
    EXPECT_EQ(text.getASCIIString(0), '\0');
    string->StringLn = 5000; // a caller's, above the record's room
    EXPECT_EQ(text.getNumberOfASCIIString(), 5001U);
    EXPECT_EQ(text.getASCIIStringVector().size(), 2001);
    EXPECT_NE(thrownText([&] { text.getASCIIString(2001); }), "");
    const FieldInfo& info = *text.getInfo()->getFieldInfo("ASCIIString");
    EXPECT_EQ(info.getNumberOfValues(&text), 5001U);
    EXPECT_EQ(thrownText([&] { info.getValue(&text, 2000); }), "");
    EXPECT_NE(thrownText([&] { info.getValue(&text, 2001); }), "");

    auto record = made(TQX_init_DiffCorrIn);
    record->Data_Byte_Length = 11;
    const TQX_DiffCorrIn_Message corrections(record.get(), false);
    EXPECT_EQ(corrections.getNumberOfRTCM2Words(), 2U) << "whole words";
    EXPECT_EQ(corrections.getNumberOfParity(), 2U);
    EXPECT_EQ(corrections.getNumberOfRTCM3Message(), 11U);
}

TEST(FieldAccess, IntegersKeepTheLocaleThatTheyMeetFirst)
{
    auto record = made(TQX_init_PVTGeodetic2);
    record->TOW = 345600000;
    const TQX_PVTGeodetic2_Message message(record.get(), false);
    const FieldInfo& tow = *message.getInfo()->getFieldInfo("TOW");
    const QLocale before;
    for (const QLocale& locale : {QLocale(QLocale::German), QLocale::c()}) {
        QLocale::setDefault(locale);
        EXPECT_EQ(tow.getValueString(&message, 0, true), "345.600.000 second");
    }
    QLocale::setDefault(before);
}

} // namespace
