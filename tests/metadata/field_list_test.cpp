#include "Lookup.h"
#include "QtPrinters.h"

#include "FieldType.h"

namespace
{

/// "WNc u16 week role 1 none 65535": a field in one line.
QString lineOf(const FieldInfo& field)
{
    QString line = field.getName() + ' ' + field.getType().toString();
    if (field.isOptional())
        line += " optional";
    if (field.isRepeated())
        line += " repeated";
    if (!field.getUnit().isEmpty())
        line += ' ' + field.getUnit();
    if (field.hasScaleFactor())
        line += " x " + QString::number(field.getScaleFactor());
    line += " role " + QString::number(field.getRole());
    if (field.hasDoNotUseValue())
        line += " none " + field.getDoNotUseValue().toString();
    return line;
}

QStringList list(const char* entries)
{
    return QString(entries).split(", ");
}

QStringList linesOf(const char* type)
{
    QStringList lines;
    const auto& fields = messageInfo(type).getFieldInfos();
    for (const FieldInfo* field : fields)
        lines.append(lineOf(*field));
    return lines;
}

QStringList subFieldsOf(const FieldInfo& field)
{
    QStringList names;
    for (const FieldInfo* sub : field.getSubFieldInfos())
        names.append(sub->getName());
    return names;
}

QStringList symbolsOf(const FieldInfo& field)
{
    QStringList symbols;
    for (const auto& symbol : field.getSymbolicValues())
        symbols.append(symbol.value.toString() + ' ' + symbol.name);
    return symbols;
}

TEST(FieldList, ASCIIIn)
{
    EXPECT_EQ(linesOf("ASCIIIn"),
              list("Sync1 ch role 2, Sync2 ch role 2, CRC u16 role 2, ID u16 role 2, "
                   "BlockNumber u13 role 2, Revision u3 role 2, Length u16 byte role 2, "
                   "TOW u32 second x 0.001 role 1 none 4294967295, "
                   "WNc u16 week role 1 none 65535, TOWc u32 role 2, CD u8 role 1, "
                   "Reserved1 u8 repeated role 3, StringLn u16 role 2, "
                   "SensorModel ch repeated role 1, SensorType ch repeated role 1, "
                   "Reserved2 u8 repeated role 3, ASCIIString ch repeated role 1"));
}

TEST(FieldList, GPSNav)
{
    QStringList units;
    for (const FieldInfo* field : messageInfo("GPSNav").getFieldInfos().mid(10))
        if (!field->getUnit().isEmpty())
            units.append(field->getName() + ' ' + field->getUnit());
    EXPECT_EQ(units,
              list("WN week, T_gd second, t_oc second, a_f2 secondpersecondsquared, "
                   "a_f1 secondpersecond, a_f0 second, C_rs meter, DEL_N semicirclepersecond, "
                   "M_0 semicircle, C_uc radian, C_us radian, SQRT_A metersqrt, t_oe second, "
                   "C_ic radian, OMEGA_0 semicircle, C_is radian, i_0 semicircle, C_rc meter, "
                   "omega semicircle, OMEGADOT semicirclepersecond, IDOT semicirclepersecond, "
                   "WNt_oc week, WNt_oe week"));
    for (const char* name : {"C_ic", "IDOT", "OMEGADOT", "a_f0", "T_gd"})
        EXPECT_EQ(fieldInfo("GPSNav", name).getPrecision(), 12) << name;
    EXPECT_EQ(fieldInfo("GPSNav", "WN").getDoNotUseValue(), FieldValue::u(65535, 16));
}

TEST(FieldList, MeasEpoch2)
{
    EXPECT_EQ(subFieldsOf(fieldInfo("MeasEpoch2", "CommonFlags")),
              list("Multipath_Mitigation, Code_Smoothing, ReservedBit2, Clock_Steering, Data_only, "
                   "High_Dynamics, E6B_Used, ReservedBit7"));
    EXPECT_TRUE(fieldInfo("MeasEpoch2", "CumClkJumps").isOptional());
    const FieldInfo& type1 = fieldInfo("MeasEpoch2", "Type1");
    EXPECT_EQ(type1.getType().getSubMessageInfo(), &messageInfo("MeasEpochChannelType1"));
    EXPECT_EQ(type1.getRole(), FieldInfo::Unset);
    EXPECT_EQ(fieldInfo("MeasEpoch2", "N1").getRole(), FieldInfo::Structure);
    EXPECT_EQ(fieldInfo("MeasEpoch2", "SB1Length").getRole(), FieldInfo::Structure);
}

TEST(FieldList, PVTGeodetic2)
{
    for (const char* name : {"NrBases", "PPPInfo", "Latency", "HAccuracy", "VAccuracy", "Misc",
                             "Baseline", "ARPMarkerOffset"})
        EXPECT_TRUE(fieldInfo("PVTGeodetic2", name).isOptional()) << name;
    for (const char* name : {"_padding0", "_padding2"})
        EXPECT_EQ(lineOf(fieldInfo("PVTGeodetic2", name)),
                  name + QString(" u8 optional repeated role 2"));
    EXPECT_EQ(lineOf(fieldInfo("PVTGeodetic2", "Latitude")),
              "Latitude f64 radian role 1 none -2e+10");
    EXPECT_EQ(fieldInfo("PVTGeodetic2", "Latitude").getPrecision(), 12);
    EXPECT_EQ(fieldInfo("PVTGeodetic2", "Height").getPrecision(), 3);
    for (const char* name : {"AlertFlag", "PPPInfo", "WACorrInfo"})
        EXPECT_EQ(fieldInfo("PVTGeodetic2", name).getRole(), FieldInfo::Structure) << name;
}

TEST(FieldList, ComputedAndSplitValues)
{
    EXPECT_TRUE(fieldInfo("MeasEpochChannelType1", "SignalType").isVirtual());
    EXPECT_FALSE(fieldInfo("MeasEpochChannelType1", "Type").isVirtual());
    EXPECT_FALSE(fieldInfo("MeasEpoch2", "TOWc").isVirtual());
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CarrierMSB").getScaleFactor(), 65.536);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CarrierMSB").getRole(), FieldInfo::Structure);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CN0").getScaleFactor(), 0.25);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CN0").getUnit(), "decibelhertz");
}

TEST(FieldList, SubFields)
{
    EXPECT_EQ(subFieldsOf(fieldInfo("ASCIIIn", "ID")), (QStringList{"BlockNumber", "Revision"}));
    EXPECT_EQ(subFieldsOf(fieldInfo("AGCState", "FrontEndID")),
              (QStringList{"FrontEnd Code", "AntennaID"}));
    EXPECT_EQ(subFieldsOf(fieldInfo("AGCState", "Gain")), QStringList{});
    EXPECT_EQ(fieldInfo("ReceiverStatus2", "RxError").getSubFieldInfos().size(), 17);
    EXPECT_EQ(subFieldsOf(fieldInfo("DiffCorrIn", "RTCM2Words")),
              (QStringList{"Parity", "Information", "Preceding"}));
}

TEST(FieldList, DoNotUseIsNamed)
{
    EXPECT_EQ(symbolsOf(fieldInfo("AGCState", "Gain")), QStringList{"-128 DoNotUse"});
    EXPECT_EQ(symbolsOf(fieldInfo("ASCIIIn", "WNc")), QStringList{"65535 DoNotUse"});
}

} // namespace
