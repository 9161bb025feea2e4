#include "Lookup.h"
#include "QtPrinters.h"
#include "Records.h"

#include <QLocale>

using namespace Kor::MessageApi;

namespace
{

class FieldText : public testing::Test
{
protected:
    FieldText() { TQX_FormatInfo::getInstance(); }
    ~FieldText() override { Message::useDoNotUseString = true; }
};

TEST_F(FieldText, IntegersShowTheirNameFirst)
{
    struct Row {
        uint8_t code;
        int8_t gain;
        uint8_t sampleVar;
        uint8_t blanking;
        const char* texts[4];
    };
    constexpr Row rows[] = {
        {7, 12, 3, 40, {"E5(a+b)", "12 decibel", "3", "40 percent"}},
        {0, -1, 255, 0, {"GPSL1/E1", "-1 decibel", "255", "0 percent"}},
        {15, -128, 0, 255, {"15", "DoNotUse", "DoNotUse", "255 percent"}},
    };
    auto record = made(TQX_init_AGCState);
    const TQX_AGCState_Message message(record.get(), nullptr, false);
    const char* const fields[] = {"FrontEnd Code", "Gain", "SampleVar", "BlankingStat"};
    for (const Row& row : rows) {
        record->FrontEnd_Code = row.code;
        record->Gain = row.gain;
        record->SampleVar = row.sampleVar;
        record->BlankingStat = row.blanking;
        for (size_t i = 0; i < 4; ++i)
            EXPECT_EQ(fieldInfo("AGCState", fields[i]).getValueString(&message, 0, true),
                      row.texts[i]);
    }
}

TEST_F(FieldText, SatelliteWithoutNameIsANumber)
{
    auto record = made(TQX_init_GPSNav);
    const TQX_GPSNav_Message message(record.get(), false);
    const FieldInfo& prn = fieldInfo("GPSNav", "PRN");
    const std::pair<int, const char*> rows[] = {{1, "G01"}, {62, "Rxx"}, {63, "R25"},
                                                {70, "70"}, {71, "E01"}, {245, "C63"}};
    for (const auto& [number, text] : rows) {
        record->PRN = static_cast<uint8_t>(number);
        EXPECT_EQ(prn.getValueString(&message, 0, true), text);
    }
}

TEST_F(FieldText, FloatsAreNeverNamed)
{
    auto record = made(TQX_init_PVTGeodetic2);
    const TQX_PVTGeodetic2_Message message(record.get(), false);
    const auto text = [&message](const char* field, bool withUnit) {
        return fieldInfo("PVTGeodetic2", field).getValueString(&message, 0, withUnit);
    };
    record->Latitude = -2e10;
    record->Undulation = -2e10F;
    Message::useDoNotUseString = true;
    EXPECT_EQ(text("Latitude", true), Message::doNotUseString);
    EXPECT_EQ(text("Undulation", true), Message::doNotUseString);
    Message::useDoNotUseString = false;
    EXPECT_EQ(text("Latitude", true), "");
    EXPECT_EQ(text("Undulation", true), "");
    record->Latitude = 0.5;
    record->Height = 1234.5678;
    record->Undulation = 0.1F;
    EXPECT_EQ(text("Latitude", false), "0,500000000000");
    EXPECT_EQ(text("Latitude", true), "0,500000000000 radian");
    EXPECT_EQ(text("Height", true), "1.234,568 meter");
    EXPECT_EQ(text("Undulation", false), "0,100");
}

TEST_F(FieldText, IntegersAreStoredOnesInTheFirstLocale)
{
    auto record = made(TQX_init_PVTGeodetic2);
    record->TOW = 345600000;
    record->WNc = 65535;
    const TQX_PVTGeodetic2_Message message(record.get(), false);
    const FieldInfo& tow = fieldInfo("PVTGeodetic2", "TOW");
    EXPECT_EQ(tow.getValueString(&message, 0, true), "345.600.000 second");
    EXPECT_EQ(fieldInfo("PVTGeodetic2", "WNc").getValueString(&message, 0, true), "DoNotUse");
    const QLocale german;
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(tow.getValueString(&message, 0, false), "345.600.000");
    QLocale::setDefault(german);
}

TEST_F(FieldText, Characters)
{
    auto record = made(TQX_init_ASCIIIn);
    const TQX_ASCIIIn_Message message(record.get(), false);
    const FieldInfo& text = fieldInfo("ASCIIIn", "ASCIIString");
    EXPECT_EQ(text.getValueString(&message), "");
    EXPECT_EQ(text.getValueString(&message, 0, true), "");
    record->StringLn = 3;
    record->ASCIIString[0] = 'a';
    record->ASCIIString[1] = '\xE9';
    record->ASCIIString[2] = '\0';
    EXPECT_EQ(text.getValueString(&message), QString::fromUtf8("a\xC3\xA9"));
    EXPECT_EQ(text.getValueString(&message, 1, true), QString::fromUtf8("\xC3\xA9"));
    EXPECT_EQ(text.getValueString(&message, 4, true), "");
    EXPECT_EQ(fieldInfo("ASCIIIn", "SensorModel").getValueString(&message), QString(20, ' '));
    record->Sync1 = '$';
    EXPECT_EQ(fieldInfo("ASCIIIn", "Sync1").getValueString(&message, 0, true), "$");
}

} // namespace
