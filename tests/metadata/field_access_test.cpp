#include "Lookup.h"
#include "QtPrinters.h"
#include "Records.h"

using namespace Kor::MessageApi;

namespace
{

std::string failureOf(const FieldInfo& field, const Message& message, unsigned index = 0)
{
    return thrownText([&] { field.getValue(&message, index); });
}

class FieldAccess : public testing::Test
{
protected:
    FieldAccess()
    {
        TQX_FormatInfo::getInstance();
        agcRecord = made(TQX_init_AGCState);
        agcRecord->Gain = -5;
        agc = std::make_unique<TQX_AGCState_Message>(agcRecord.get(), nullptr, false);
    }

    std::unique_ptr<TQX_AGCState_s> agcRecord;
    std::unique_ptr<TQX_AGCState_Message> agc;
};

TEST_F(FieldAccess, PlainField)
{
    const FieldInfo& gain = fieldInfo("AGCState", "Gain");
    EXPECT_TRUE(gain.hasValue(agc.get()));
    EXPECT_EQ(gain.getNumberOfValues(agc.get()), 1U);
    const FieldValue value = gain.getValue(agc.get(), 0);
    EXPECT_EQ(value.getKind(), FieldKind::I);
    EXPECT_EQ(value.getWidth(), 8);
    EXPECT_EQ(value.getI8(), -5);
    EXPECT_EQ(gain.getValueUnchecked(agc.get(), 0), value);
    EXPECT_EQ(failureOf(gain, *agc, 1),
              "Requesting value for a non-repeated field AGCState::Gain using non-zero index.");
}

TEST_F(FieldAccess, MessageOfAnotherType)
{
    auto record = made(TQX_init_ReceiverStatus2);
    const TQX_ReceiverStatus2_Message other(record.get(), false);
    const FieldInfo& code = fieldInfo("AGCState", "FrontEnd Code");
    EXPECT_FALSE(code.hasValue(&other));
    EXPECT_EQ(code.getNumberOfValues(&other), 0U);
    EXPECT_EQ(failureOf(code, other), "Requesting value for a field AGCState::FrontEnd Code that "
                                      "is not present in the given kind of message.");
    EXPECT_EQ(code.getValueString(&other, 0, true), "");
    EXPECT_FALSE(code.hasValue(nullptr));
    EXPECT_EQ(code.getNumberOfValues(nullptr), 0U);
}

TEST_F(FieldAccess, OptionalField)
{
    struct Row {
        uint8_t revision;
        const char* field;
        bool isPresent;
        unsigned count;
    };
    constexpr Row rows[] = {
        {0, "Voltage", false, 1},  {1, "Voltage", true, 1},  {2, "Voltage", true, 1},
        {1, "Reserved", false, 3}, {2, "Reserved", true, 3}, {7, "Reserved", true, 3},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.field) + " at revision " + std::to_string(row.revision));
        auto record = batteryStatus(row.revision);
        const TQX_BatteryStatus_Message message(record.get(), false);
        const Message* battery = message.getBattery(0);
        const FieldInfo& field = fieldInfo("Battery", row.field);
        EXPECT_EQ(field.hasValue(battery), row.isPresent);
        EXPECT_EQ(field.getNumberOfValues(battery), row.isPresent ? row.count : 0);
        const std::string absent =
            "Requesting value for a non-present optional field Battery::" + std::string(row.field) +
            ".";
        EXPECT_EQ(failureOf(field, *battery), row.isPresent ? "" : absent);
        if (!row.isPresent) {
            EXPECT_EQ(failureOf(field, *battery, 9), absent) << "presence comes before the index";
            EXPECT_EQ(field.getValueString(battery, 0, true), "");
        }
    }
}

TEST_F(FieldAccess, IndexOfAPresentOptionalScalar)
{
    auto record = batteryStatus(1);
    const TQX_BatteryStatus_Message message(record.get(), false);
    EXPECT_EQ(failureOf(fieldInfo("Battery", "Voltage"), *message.getBattery(0), 1),
              "Requesting value for a non-repeated field Battery::Voltage using non-zero index.");
}

TEST_F(FieldAccess, RepeatedField)
{
    auto record = batteryStatus(2);
    const TQX_BatteryStatus_Message message(record.get(), false);
    const Message* battery = message.getBattery(0);
    const FieldInfo& reserved = fieldInfo("Battery", "Reserved");
    EXPECT_EQ(reserved.getValue(battery, 2), FieldValue::u(3, 8));
    EXPECT_EQ(failureOf(reserved, *battery, 3), "Requesting value for an repeated field "
                                                "Battery::Reserved with out of range index.");
}

TEST_F(FieldAccess, Padding)
{
    const FieldInfo& padding0 = fieldInfo("PVTGeodetic2", "_padding0");
    const FieldInfo& padding2 = fieldInfo("PVTGeodetic2", "_padding2");
    auto record = made(TQX_init_PVTGeodetic2);
    const TQX_PVTGeodetic2_Message message(record.get(), false);
    for (uint8_t revision = 0; revision < 4; ++revision) {
        record->Revision = revision;
        EXPECT_EQ(padding0.getNumberOfValues(&message), revision == 0 ? 3U : 0U);
        EXPECT_EQ(padding2.hasValue(&message), revision == 2);
    }
    EXPECT_EQ(
        failureOf(padding0, message),
        "Requesting value for an optional field PVTGeodetic2::_padding0 that is not present.");
}

TEST_F(FieldAccess, TextCountsItsTerminatingZero)
{
    auto record = made(TQX_init_ASCIIIn);
    const TQX_ASCIIIn_Message message(record.get(), false);
    const FieldInfo& model = fieldInfo("ASCIIIn", "SensorModel");
    EXPECT_EQ(model.getNumberOfValues(&message), 21U);
    EXPECT_EQ(model.getValue(&message, 0).getCh(), ' ');
    EXPECT_EQ(model.getValue(&message, 20).getCh(), '\0');
    EXPECT_FALSE(failureOf(model, message, 21).empty());

    const FieldInfo& text = fieldInfo("ASCIIIn", "ASCIIString");
    EXPECT_TRUE(text.hasValue(&message));
    EXPECT_EQ(text.getNumberOfValues(&message), 1U);
    record->StringLn = 2001; // one more than there is room for
    EXPECT_EQ(text.getNumberOfValues(&message), 2002U);
    EXPECT_EQ(failureOf(text, message, 2000), "");
    EXPECT_EQ(failureOf(text, message, 2001), "Requesting value for an repeated field "
                                              "ASCIIIn::ASCIIString with out of range index.");
}

TEST_F(FieldAccess, SubBlockArrays)
{
    auto record = measEpoch2(2);
    const TQX_MeasEpoch2_Message message(record.get(), false);
    const FieldInfo& type1 = fieldInfo("MeasEpoch2", "Type1");
    EXPECT_EQ(type1.getNumberOfValues(&message), 2U);
    EXPECT_EQ(type1.getValue(&message, 1).getSubMessage(), message.getType1(1));
    EXPECT_EQ(type1.getValueUnchecked(&message, 0).getSubMessage(), message.getType1(0));
    EXPECT_EQ(type1.getValueString(&message, 0, true), "submsg");
    EXPECT_EQ(failureOf(type1, message, 2), "Requesting value for an repeated field "
                                            "MeasEpoch2::Type1 with out of range index.");
    const Message* channel = message.getType1(1);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "RxChannel").getValue(channel, 0).getU8(), 2);

    auto empty = measEpoch2(0);
    const TQX_MeasEpoch2_Message none(empty.get(), false);
    EXPECT_FALSE(type1.hasValue(&none));
    EXPECT_EQ(type1.getNumberOfValues(&none), 0U);
}

TEST_F(FieldAccess, EmbeddedSubBlocks)
{
    auto record = made(TQX_init_ExtSensorMeasSet);
    record->Type = 4;
    const TQX_ExtSensorMeasSet_Message message(record.get(), nullptr, false);
    const FieldInfo& velocity = fieldInfo("ExtSensorMeasSet", "Velocity");
    EXPECT_TRUE(velocity.hasValue(&message));
    EXPECT_EQ(velocity.getNumberOfValues(&message), 1U);
    EXPECT_EQ(velocity.getValue(&message, 0).getSubMessage(), message.getVelocity());
    const FieldInfo& acceleration = fieldInfo("ExtSensorMeasSet", "Acceleration");
    EXPECT_FALSE(acceleration.hasValue(&message));
    EXPECT_EQ(acceleration.getNumberOfValues(&message), 0U);
    EXPECT_EQ(failureOf(acceleration, message),
              "Requesting value for a non-present optional field ExtSensorMeasSet::Acceleration.");
}

TEST_F(FieldAccess, SelectedCountedArrays)
{
    auto record = made(TQX_init_DiffCorrIn);
    record->Mode = 0;
    record->Data_Byte_Length = 8;
    record->RTCM2Words[1] = 0xFFFFFFFF;
    record->Parity[1] = 63;
    const TQX_DiffCorrIn_Message message(record.get(), false);
    EXPECT_EQ(fieldInfo("DiffCorrIn", "RTCM2Words").getNumberOfValues(&message), 2U);
    EXPECT_EQ(fieldInfo("DiffCorrIn", "Parity").getNumberOfValues(&message), 2U);
    EXPECT_EQ(fieldInfo("DiffCorrIn", "Parity").getValue(&message, 1), FieldValue::u(63, 6));
    EXPECT_EQ(fieldInfo("DiffCorrIn", "Parity").getValue(&message, 1).getWidth(), 6);
    EXPECT_EQ(fieldInfo("DiffCorrIn", "CMRMessage").getNumberOfValues(&message), 0U);
    record->Mode = 1;
    EXPECT_EQ(fieldInfo("DiffCorrIn", "RTCM2Words").getNumberOfValues(&message), 0U);
    EXPECT_EQ(fieldInfo("DiffCorrIn", "CMRMessage").getNumberOfValues(&message), 8U);
}

TEST_F(FieldAccess, MessageWithoutRecordEndsTheProcess)
{
    const TQX_AGCState_Message empty(nullptr, nullptr, false);
    const FieldInfo& gain = fieldInfo("AGCState", "Gain");
    EXPECT_TRUE(gain.hasValue(&empty)) << "the class alone decides for a plain field";
    const char* const text = "TQX_AGCState_Message::assertRepresentation\\(\\) failed when trying "
                             "to access data of an uninitialized message.";
    EXPECT_DEATH(gain.getValue(&empty, 0), text);
    EXPECT_DEATH(gain.getValueUnchecked(&empty, 0), text);
    EXPECT_DEATH(gain.getValueString(&empty, 0, false), text);
}

} // namespace
