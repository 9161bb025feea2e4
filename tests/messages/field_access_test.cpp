#include "Records.h"

using namespace Kor::MessageApi;

namespace
{

TEST(FieldAccess, PresenceFollowsTheRevision)
{
    for (uint8_t revision = 0; revision <= 7; ++revision) {
        SCOPED_TRACE(int{revision});
        auto pvt = made(TQX_init_PVTGeodetic2);
        pvt->Revision = revision;
        const TQX_PVTGeodetic2_Message position(pvt.get(), false);
        EXPECT_EQ(position.hasHAccuracy(), revision >= 2);
        EXPECT_EQ(position.hasBaseline(), revision >= 2);
        EXPECT_EQ(position.has_padding0(), revision == 0);

        auto epoch = measEpoch2(0);
        epoch->Revision = revision;
        EXPECT_EQ(TQX_MeasEpoch2_Message(epoch.get(), false).hasCumClkJumps(), revision >= 1);

        auto status = batteryStatus(revision);
        TQX_BatteryStatus_Message batteries(status.get(), false);
        TQX_Battery_Message* battery = batteries.getBattery(0);
        EXPECT_EQ(battery->hasVoltage(), revision >= 1);
        EXPECT_EQ(battery->hasReserved(), revision >= 2);
        EXPECT_EQ(thrownText([&] { battery->getVoltage(); }).empty(), revision >= 1);
        EXPECT_EQ(battery->getReserved(2), 3) << "an absent array is read all the same";
    }
}

TEST(FieldAccess, PresenceFollowsTheSelector)
{
    auto record = made(TQX_init_DiffCorrIn);
    auto set = made(TQX_init_ExtSensorMeasSet);
    const TQX_DiffCorrIn_Message corrections(record.get(), false);
    const TQX_ExtSensorMeasSet_Message sensor(set.get(), nullptr, false);
    for (uint8_t value = 0; value < 24; ++value) {
        SCOPED_TRACE(int{value});
        record->Mode = value;
        EXPECT_EQ(corrections.hasRTCM2Words(), value == 0);
        EXPECT_EQ(corrections.hasParity(), value == 0);
        EXPECT_EQ(corrections.hasCMRMessage(), value == 1);
        EXPECT_EQ(corrections.hasRTCM3Message(), value == 2);
        EXPECT_EQ(corrections.hasRTCMVMessage(), value == 3);
        set->Type = value;
        EXPECT_EQ(sensor.hasAcceleration(), value == 0);
        EXPECT_EQ(sensor.hasInfo(), value == 3);
        EXPECT_EQ(sensor.hasZeroVelocityFlag(), value == 20);
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

    // A caller's count above the record's room is told as it is, but never read.
    string->StringLn = 5000;
    EXPECT_EQ(text.getNumberOfASCIIString(), 5001U);
    EXPECT_EQ(text.getASCIIStringVector().size(), 2001);
    EXPECT_EQ(thrownText([&] { text.getASCIIString(2001); }),
              "Requesting value for an repeated field ASCIIIn::ASCIIString with out of range "
              "index.");

    auto record = made(TQX_init_DiffCorrIn);
    TQX_DiffCorrIn_Message corrections(record.get(), false);
    record->Data_Byte_Length = 11;
    EXPECT_EQ(corrections.getNumberOfRTCM2Words(), 2U) << "whole words";
    EXPECT_EQ(corrections.getNumberOfParity(), 2U);
    EXPECT_EQ(corrections.getNumberOfRTCM3Message(), 11U);
    corrections.getRTCM2WordsArray()[1] = 77;
    EXPECT_EQ(corrections.getRTCM2WordsVector(), QVector<unsigned int>({0, 77}));
}

} // namespace
