#include "Lookup.h"
#include "QtPrinters.h"
#include "Records.h"

using namespace Kor::MessageApi;

namespace
{

std::string failureOf(const FieldInfo& field, const Message& message, unsigned index)
{
    return thrownText([&] { field.getValue(&message, index); });
}

TEST(FieldAccess, SaysWhyThereIsNoValue)
{
    auto position = made(TQX_init_PVTGeodetic2);
    const TQX_PVTGeodetic2_Message pvt(position.get(), false);
    position->Revision = 1;
    auto first = batteryStatus(0);
    auto second = batteryStatus(2);
    const TQX_BatteryStatus_Message oldStatus(first.get(), false);
    const TQX_BatteryStatus_Message newStatus(second.get(), false);
    const Message& old = *oldStatus.getBattery(0);
    const Message& recent = *newStatus.getBattery(0);
    struct Row {
        const char* type;
        const char* field;
        const Message& message;
        unsigned index;
        const char* text;
    };
    const Row rows[] = {
        {"PVTGeodetic2", "Height", pvt, 0, ""},
        {"PVTGeodetic2", "Height", pvt, 1,
         "Requesting value for a non-repeated field PVTGeodetic2::Height using non-zero index."},
        {"PVTGeodetic2", "_padding0", pvt, 0,
         "Requesting value for an optional field PVTGeodetic2::_padding0 that is not present."},
        {"AGCState", "FrontEnd Code", pvt, 7,
         "Requesting value for a field AGCState::FrontEnd Code that is not present in the given "
         "kind of message."},
        {"Battery", "Voltage", old, 9,
         "Requesting value for a non-present optional field Battery::Voltage."},
        {"Battery", "Voltage", recent, 0, ""},
        {"Battery", "Voltage", recent, 1,
         "Requesting value for a non-repeated field Battery::Voltage using non-zero index."},
        {"Battery", "Reserved", old, 0,
         "Requesting value for a non-present optional field Battery::Reserved."},
        {"Battery", "Reserved", recent, 2, ""},
        {"Battery", "Reserved", recent, 3,
         "Requesting value for an repeated field Battery::Reserved with out of range index."},
    };
    for (const Row& row : rows)
        EXPECT_EQ(failureOf(fieldInfo(row.type, row.field), row.message, row.index), row.text)
            << row.field << ' ' << row.index;
}

TEST(FieldAccess, TextCountsItsTerminatingZero)
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

TEST(FieldAccess, MessageWithoutRecordEndsTheProcess)
{
    TQX_FormatInfo::getInstance();
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
