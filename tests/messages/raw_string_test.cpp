#include "Records.h"

#include <QLocale>

#include <algorithm>
#include <cstring>
#include <vector>

using namespace Kor::MessageApi;

namespace
{

/// Line of the named fields, with "n/a" for what is not available if `use` is set.
std::string line(const Message& message, const std::vector<std::string>& names, bool use = true)
{
    const void* record = RecordReader::recordOf(&message);
    const TQX_TypeLayout& type = *TQX_layout(TQX_AS_KORCG_HEADER(record)->korcg_type);
    QVector<bool> mask(type.fieldCount, false);
    for (int i = 0; i < mask.size(); ++i)
        mask[i] = std::count(names.begin(), names.end(), type.fields[i].name) != 0;
    EXPECT_EQ(static_cast<size_t>(mask.count(true)), names.size());
    const QString separator = std::exchange(Message::fieldSeparator, QStringLiteral(";"));
    const QString text = std::exchange(Message::doNotUseString, QStringLiteral("n/a"));
    const bool used = std::exchange(Message::useDoNotUseString, use);
    const QLocale locale;
    QLocale::setDefault(QLocale(QLocale::German)); // which the line does not follow
    const std::string result = message.getRawStringFor(mask).toStdString();
    QLocale::setDefault(locale);
    Message::fieldSeparator = separator;
    Message::doNotUseString = text;
    Message::useDoNotUseString = used;
    return result;
}

TEST(RawString, NumbersAndDoNotUseValues)
{
    auto record = made(TQX_init_AGCState);
    record->FrontEndID = 3;
    record->FrontEnd_Code = 3;
    record->Gain = -128;
    record->BlankingStat = 1;
    const TQX_AGCState_Message state(record.get(), nullptr, false);
    const std::vector<std::string> all = {"FrontEndID", "FrontEnd Code", "AntennaID",
                                          "Gain",       "SampleVar",     "BlankingStat"};
    EXPECT_EQ(line(state, all), "3;3;0;n/a;n/a;1");
    EXPECT_EQ(line(state, all, false), "3;3;0;-128;0;1");
    EXPECT_EQ(line(state, {"FrontEndID", "Gain"}), "3;n/a");
    EXPECT_EQ(line(state, {}), "");
    EXPECT_EQ(state.getRawStringFor({true, true}), "3" + Message::fieldSeparator + "3");
}

TEST(RawString, HeaderAndFloats)
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
    EXPECT_EQ(line(position, {"Longitude", "Undulation"}, false),
              "-20000000000.000000000000;-20000000000.000");
}

TEST(RawString, TextEndsAtItsZero)
{
    auto record = made(TQX_init_ASCIIIn);
    const TQX_ASCIIIn_Message message(record.get(), false);
    EXPECT_EQ(line(message, {"StringLn", "SensorModel", "ASCIIString"}),
              "0;" + std::string(20, ' ') + ";");
    std::strcpy(record->SensorModel, "MET4");
    std::strcpy(record->ASCIIString, "12 \xb0 C");
    EXPECT_EQ(line(message, {"SensorModel", "ASCIIString"}), "MET4;12 \u00b0 C");
}

} // namespace
