#include "Records.h"

#include "TQX_FormatInfo.h"

#include <cstring>
#include <numeric>

using namespace Kor::MessageApi;

namespace
{

class RawString : public testing::Test
{
protected:
    void SetUp() override
    {
        TQX_FormatInfo::getInstance();
        m_separator = std::exchange(Message::fieldSeparator, QStringLiteral(";"));
        m_text = std::exchange(Message::doNotUseString, QStringLiteral("n/a"));
        m_use = std::exchange(Message::useDoNotUseString, true);
    }
    void TearDown() override
    {
        Message::fieldSeparator = m_separator;
        Message::doNotUseString = m_text;
        Message::useDoNotUseString = m_use;
    }

private:
    QString m_separator;
    QString m_text;
    bool m_use = true;
};

/// Line of the named fields.
std::string line(const Message& message, const std::vector<std::string>& names)
{
    const void* record = RecordReader::recordOf(&message);
    const TQX_TypeLayout& type = *TQX_layout(TQX_AS_KORCG_HEADER(record)->korcg_type);
    QVector<bool> mask(type.fieldCount, false);
    size_t found = 0;
    for (int i = 0; i < mask.size(); ++i) {
        mask[i] = std::count(names.begin(), names.end(), type.fields[i].name) != 0;
        found += mask[i] ? 1 : 0;
    }
    EXPECT_EQ(found, names.size());
    return message.getRawStringFor(mask).toStdString();
}

TEST_F(RawString, NumbersAndDoNotUseValues)
{
    auto record = made(TQX_init_AGCState);
    record->FrontEndID = 3;
    record->FrontEnd_Code = 3;
    record->Gain = -128;
    record->BlankingStat = 1;
    const TQX_AGCState_Message state(record.get(), nullptr, false);
    const QVector<bool> all(6, true);
    EXPECT_EQ(state.getRawStringFor(all).toStdString(), "3;3;0;n/a;n/a;1");
    EXPECT_EQ(state.getRawStringFor(QVector<bool>(9, true)).toStdString(), "3;3;0;n/a;n/a;1");
    EXPECT_EQ(state.getRawStringFor({true, false, false, true}).toStdString(), "3;n/a");
    EXPECT_EQ(state.getRawStringFor({false, false, false, false}).toStdString(), "");
    EXPECT_EQ(state.getRawStringFor({}).toStdString(), "");
    Message::useDoNotUseString = false;
    EXPECT_EQ(state.getRawStringFor(all).toStdString(), "3;3;0;-128;0;1");
}

TEST_F(RawString, AnEmptyMaskNeedsNoRecord)
{
    const TQX_AGCState_Message state(nullptr, nullptr, false);
    EXPECT_EQ(state.getRawStringFor(QVector<bool>(6, false)).toStdString(), "");
}

TEST_F(RawString, HeaderAndFloats)
{
    auto record = made(TQX_init_PVTGeodetic2);
    record->TOW = 0xffffffff;
    record->WNc = 2300;
    record->Latitude = 0.5;
    record->Longitude = -2e10;
    record->Undulation = -2e10F;
    record->Vn = 0.1F;
    const TQX_PVTGeodetic2_Message position(record.get(), false);
    EXPECT_EQ(line(position, {"Sync1", "Sync2", "BlockNumber", "TOW", "WNc"}), "$;@;4007;n/a;2300");
    EXPECT_EQ(line(position, {"Latitude", "Longitude", "Undulation", "Vn"}),
              "0.500000000000;n/a;n/a;0.100");
    Message::useDoNotUseString = false;
    EXPECT_EQ(line(position, {"Longitude", "Undulation"}),
              "-20000000000.000000000000;-20000000000.000");
}

TEST_F(RawString, AbsentFieldsAreEmptyColumns)
{
    for (const uint8_t revision : {uint8_t{0}, uint8_t{2}}) {
        auto status = batteryStatus(revision);
        TQX_BatteryStatus_Message message(status.get(), false);
        const TQX_Battery_Message& battery = *message.getBattery(0);
        const bool present = revision == 2;
        EXPECT_EQ(line(battery, {"Slot", "Voltage"}), present ? "0;12000" : "0;");
        EXPECT_EQ(line(battery, {"Voltage"}), present ? "12000" : "");
        EXPECT_EQ(line(battery, {"Voltage", "Reserved"}), present ? "12000;1 2 3" : ";");
    }
}

TEST_F(RawString, TextEndsAtItsZero)
{
    auto record = made(TQX_init_ASCIIIn);
    const TQX_ASCIIIn_Message message(record.get(), false);
    EXPECT_EQ(line(message, {"StringLn", "SensorModel", "ASCIIString"}),
              "0;" + std::string(20, ' ') + ";");
    std::strcpy(record->SensorModel, "MET4");
    std::strcpy(record->ASCIIString, "12 \xb0 C");
    record->StringLn = 6;
    EXPECT_EQ(line(message, {"SensorModel", "ASCIIString"}), "MET4;12 \u00b0 C");
    std::memset(record->SensorModel, 'x', sizeof record->SensorModel);
    EXPECT_EQ(line(message, {"SensorModel"}), std::string(20, 'x'));
}

TEST_F(RawString, SubBlocksAreCountedNotRendered)
{
    auto epoch = measEpoch2(3);
    const TQX_MeasEpoch2_Message three(epoch.get(), false);
    EXPECT_EQ(line(three, {"N1", "Type1"}), "3;submsg submsg submsg");
    auto none = measEpoch2(0);
    const TQX_MeasEpoch2_Message empty(none.get(), false);
    EXPECT_EQ(line(empty, {"N1", "Type1"}), "0;");

    auto set = made(TQX_init_ExtSensorMeasSet);
    set->Type = 4;
    const TQX_ExtSensorMeasSet_Message sensor(set.get(), nullptr, false);
    EXPECT_EQ(line(sensor, {"Type", "Info", "Velocity"}), "4;;submsg");
}

} // namespace
