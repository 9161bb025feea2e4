#include "Lookup.h"
#include "QtPrinters.h"

#include "FieldType.h"

namespace
{

/// "WNc u16 week role 1 none 65535": a field in one line.
std::string lineOf(const FieldInfo& field)
{
    QString line = field.getName() + ' ' + field.getType().toString();
    if (field.isOptional())
        line += " optional";
    if (field.isRepeated())
        line += " repeated";
    if (field.isVirtual())
        line += " virtual";
    if (!field.getUnit().isEmpty())
        line += ' ' + field.getUnit();
    if (field.hasScaleFactor())
        line += " x " + QString::number(field.getScaleFactor());
    line += " role " + QString::number(field.getRole());
    if (field.hasDoNotUseValue())
        line += " none " + field.getDoNotUseValue().toString();
    if (field.getPrecision() >= 0)
        line += " digits " + QString::number(field.getPrecision());
    return line.toStdString();
}

TEST(FieldList, SampleFieldsAreDescribed)
{
    const std::pair<const char*, std::vector<const char*>> types[] = {
        {"ASCIIIn",
         {"Sync1 ch role 2", "Sync2 ch role 2", "CRC u16 role 2", "ID u16 role 2",
          "BlockNumber u13 role 2", "Revision u3 role 2", "Length u16 byte role 2",
          "TOW u32 second x 0.001 role 1 none 4294967295", "WNc u16 week role 1 none 65535",
          "TOWc u32 role 2", "CD u8 role 1", "Reserved1 u8 repeated role 3", "StringLn u16 role 2",
          "SensorModel ch repeated role 1", "SensorType ch repeated role 1",
          "Reserved2 u8 repeated role 3", "ASCIIString ch repeated role 1"}},
        {"GPSNav",
         {"WN u16 week role 1 none 65535",
          "T_gd f32 second role 1 none -2e+10 digits 12",
          "t_oc u32 second role 1",
          "a_f2 f32 secondpersecondsquared role 1 none -2e+10 digits 18",
          "a_f1 f32 secondpersecond role 1 none -2e+10 digits 16",
          "a_f0 f32 second role 1 none -2e+10 digits 12",
          "C_rs f32 meter role 1 none -2e+10 digits 3",
          "DEL_N f32 semicirclepersecond role 1 none -2e+10 digits 16",
          "M_0 f64 semicircle role 1 none -2e+10 digits 12",
          "C_uc f32 radian role 1 none -2e+10 digits 12",
          "C_us f32 radian role 1 none -2e+10 digits 12",
          "SQRT_A f64 metersqrt role 1 none -2e+10 digits 8",
          "t_oe u32 second role 1",
          "C_ic f32 radian role 1 none -2e+10 digits 12",
          "OMEGA_0 f64 semicircle role 1 none -2e+10 digits 12",
          "C_is f32 radian role 1 none -2e+10 digits 12",
          "i_0 f64 semicircle role 1 none -2e+10 digits 12",
          "C_rc f32 meter role 1 none -2e+10 digits 3",
          "omega f64 semicircle role 1 none -2e+10 digits 12",
          "OMEGADOT f32 semicirclepersecond role 1 none -2e+10 digits 12",
          "IDOT f32 semicirclepersecond role 1 none -2e+10 digits 12",
          "WNt_oc u16 week role 1 none 65535",
          "WNt_oe u16 week role 1 none 65535"}},
        {"MeasEpoch2",
         {"N1 u8 role 2", "SB1Length u8 byte role 2", "CumClkJumps u8 optional millisecond role 1",
          "Type1 sub repeated role 0", "TOWc u32 role 2"}},
        {"MeasEpochChannelType1",
         {"SignalType u8 virtual role 1", "Type u8 role 1",
          "CarrierMSB i8 cycle x 65.536 role 2 none -128",
          "CN0 u8 decibelhertz x 0.25 role 1 none 255"}},
        {"PVTGeodetic2",
         {"NrBases u8 optional role 1", "PPPInfo u16 optional role 2",
          "ARPMarkerOffset u1 optional role 1", "_padding0 u8 optional repeated role 2",
          "_padding2 u8 optional repeated role 2",
          "Latitude f64 radian role 1 none -2e+10 digits 12",
          "Height f64 meter role 1 none -2e+10 digits 3", "AlertFlag u8 role 2",
          "WACorrInfo u8 role 2"}},
    };
    for (const auto& [type, lines] : types) {
        for (const std::string line : lines) {
            EXPECT_EQ(lineOf(fieldInfo(type, line.substr(0, line.find(' ')).c_str())), line)
                << type;
        }
    }
}

} // namespace
