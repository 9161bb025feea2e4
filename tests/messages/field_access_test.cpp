#include "Records.h"

#include "TQX_FormatInfo.h"

#include <functional>
#include <string>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

class FieldAccess : public testing::Test
{
protected:
    void SetUp() override { TQX_FormatInfo::getInstance(); }
};

TEST_F(FieldAccess, PresenceFollowsTheRevision)
{
    for (uint8_t revision = 0; revision <= 7; ++revision) {
        SCOPED_TRACE(int{revision});
        auto pvt = made(TQX_init_PVTGeodetic2);
        pvt->Revision = revision;
        const TQX_PVTGeodetic2_Message position(pvt.get(), false);
        EXPECT_EQ(position.hasNrBases(), revision >= 1);
        EXPECT_EQ(position.hasHAccuracy(), revision >= 2);
        EXPECT_EQ(position.hasBaseline(), revision >= 2);
        EXPECT_EQ(position.hasARPMarkerOffset(), revision >= 2);
        EXPECT_EQ(position.has_padding0(), revision == 0);
        EXPECT_EQ(position.has_padding2(), revision == 2);

        auto epoch = measEpoch2(0);
        epoch->Revision = revision;
        EXPECT_EQ(TQX_MeasEpoch2_Message(epoch.get(), false).hasCumClkJumps(), revision >= 1);

        auto status = batteryStatus(revision);
        TQX_BatteryStatus_Message batteries(status.get(), false);
        const TQX_Battery_Message* battery = batteries.getBattery(0);
        EXPECT_EQ(battery->hasCurrent(), revision >= 1);
        EXPECT_EQ(battery->hasVoltage(), revision >= 1);
        EXPECT_EQ(battery->hasTemperature(), revision >= 1);
        EXPECT_EQ(battery->hasReserved(), revision >= 2);
    }
}

TEST_F(FieldAccess, WithoutAParentNothingDependsOnTheRevision)
{
    auto record = made(TQX_init_Battery);
    const TQX_Battery_Message battery(record.get(), nullptr, false);
    EXPECT_FALSE(battery.hasVoltage());
    EXPECT_FALSE(battery.hasReserved());
    EXPECT_EQ(battery.getNumberOfReserved(), 3U);
}

TEST_F(FieldAccess, PresenceFollowsTheSelector)
{
    auto record = made(TQX_init_DiffCorrIn);
    auto set = made(TQX_init_ExtSensorMeasSet);
    const TQX_DiffCorrIn_Message corrections(record.get(), false);
    const TQX_ExtSensorMeasSet_Message sensor(set.get(), nullptr, false);
    for (uint8_t value = 0; value < 24; ++value) {
        SCOPED_TRACE(int{value});
        record->Mode = value;
        EXPECT_EQ(corrections.hasRTCM2Words(), value == 0);
        EXPECT_EQ(corrections.hasPreceding(), value == 0);
        EXPECT_EQ(corrections.hasInformation(), value == 0);
        EXPECT_EQ(corrections.hasParity(), value == 0);
        EXPECT_EQ(corrections.hasCMRMessage(), value == 1);
        EXPECT_EQ(corrections.hasRTCM3Message(), value == 2);
        EXPECT_EQ(corrections.hasRTCMVMessage(), value == 3);
        set->Type = value;
        EXPECT_EQ(sensor.hasAcceleration(), value == 0);
        EXPECT_EQ(sensor.hasAngularRate(), value == 1);
        EXPECT_EQ(sensor.hasInfo(), value == 3);
        EXPECT_EQ(sensor.hasVelocity(), value == 4);
        EXPECT_EQ(sensor.hasZeroVelocityFlag(), value == 20);
    }
}

TEST_F(FieldAccess, ThrowsWithTheFieldInItsText)
{
    auto status = batteryStatus(0);
    auto epoch = measEpoch2(2);
    auto set = made(TQX_init_ExtSensorMeasSet);
    auto string = made(TQX_init_ASCIIIn);
    TQX_BatteryStatus_Message batteries(status.get(), false);
    TQX_Battery_Message* battery = batteries.getBattery(0);
    TQX_MeasEpoch2_Message measurements(epoch.get(), false);
    const TQX_MeasEpoch2_Message& constant = measurements;
    TQX_ExtSensorMeasSet_Message sensor(set.get(), nullptr, false);
    set->Type = 1;
    const TQX_ASCIIIn_Message text(string.get(), false);

    const std::string absent = "Requesting value for a non-present optional field ";
    const std::string repeated = "Requesting value for an repeated field ";
    const std::string range = " with out of range index.";
    const struct {
        std::string text;
        std::function<void()> read;
    } cases[] = {
        {absent + "Battery::Voltage.", [&] { battery->getVoltage(); }},
        {absent + "MeasEpoch2::CumClkJumps.", [&] { measurements.getCumClkJumps(); }},
        {absent + "ExtSensorMeasSet::Acceleration.", [&] { sensor.getAcceleration(); }},
        {repeated + "Battery::Reserved" + range, [&] { battery->getReserved(3); }},
        {repeated + "MeasEpoch2::Type1" + range, [&] { measurements.getType1(2); }},
        {repeated + "MeasEpoch2::Type1" + range, [&] { constant.getType1(2); }},
        {repeated + "ASCIIIn::ASCIIString" + range, [&] { text.getASCIIString(1); }},
        {repeated + "ASCIIIn::SensorModel" + range, [&] { text.getSensorModel(21); }},
        {"", [&] { battery->getReserved(2); }}, // an absent array is read all the same
        {"", [&] { text.getASCIIString(0); }},
        {"", [&] { sensor.getAngularRate(); }},
    };
    for (const auto& row : cases)
        EXPECT_EQ(thrownText(row.read), row.text);
    EXPECT_EQ(battery->getReserved(2), 3);
}

TEST_F(FieldAccess, CountsOfRepeatedFields)
{
    auto string = made(TQX_init_ASCIIIn);
    const TQX_ASCIIIn_Message text(string.get(), false);
    EXPECT_EQ(text.getNumberOfSensorModel(), 21U);
    EXPECT_EQ(text.getSensorModelVector().last(), '\0');
    EXPECT_EQ(text.getSensorModelVector().first(), ' ');
    EXPECT_EQ(text.getNumberOfASCIIString(), 1U);
    EXPECT_EQ(text.getASCIIString(0), '\0');

    // A caller's count above the record's room is told as it is, but never read.
    string->StringLn = 5000;
    EXPECT_EQ(text.getNumberOfASCIIString(), 5001U);
    EXPECT_EQ(text.getASCIIStringVector().size(), 2001);
    EXPECT_EQ(text.getASCIIString(2000), '\0');
    EXPECT_NE(thrownText([&] { text.getASCIIString(2001); }), "");

    auto record = made(TQX_init_DiffCorrIn);
    TQX_DiffCorrIn_Message corrections(record.get(), false);
    record->Data_Byte_Length = 11;
    EXPECT_EQ(corrections.getNumberOfRTCM2Words(), 2U) << "whole words";
    EXPECT_EQ(corrections.getNumberOfParity(), 2U);
    EXPECT_EQ(corrections.getNumberOfRTCM3Message(), 11U);
    corrections.getRTCM2WordsArray()[1] = 77;
    EXPECT_EQ(corrections.getRTCM2Words(1), 77U);
    EXPECT_EQ(corrections.getRTCM2WordsVector(), QVector<unsigned int>({0, 77}));
}

TEST_F(FieldAccess, ValuesAreThoseOfTheRecord)
{
    auto record = made(TQX_init_AGCState);
    record->Gain = -128;
    record->FrontEnd_Code = 7;
    const TQX_AGCState_Message state(record.get(), nullptr, false);
    EXPECT_EQ(state.getGain(), -128);
    EXPECT_EQ(state.getFrontEnd_Code(), 7);
}

} // namespace
