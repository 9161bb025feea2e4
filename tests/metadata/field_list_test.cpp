#include "Lookup.h"
#include "QtPrinters.h"

#include "FieldType.h"

namespace
{

enum Show { Names, Units, Everything };

/// "WNc u16 week role 1 none 65535": a field in one line.
QString lineOf(const FieldInfo& field, Show show)
{
    QString line = field.getName() + ' ' + field.getType().toString();
    if (field.isOptional())
        line += " optional";
    if (field.isRepeated())
        line += " repeated";
    if (show == Names)
        return line;
    if (!field.getUnit().isEmpty())
        line += ' ' + field.getUnit();
    if (show == Units)
        return line;
    if (field.hasScaleFactor())
        line += " x " + QString::number(field.getScaleFactor());
    line += " role " + QString::number(field.getRole());
    if (field.hasDoNotUseValue())
        line += " none " + field.getDoNotUseValue().toString();
    return line;
}

QStringList linesOf(const char* type, Show show, int first = 0)
{
    QStringList lines;
    const auto& fields = messageInfo(type).getFieldInfos();
    for (int i = first; i < fields.size(); ++i)
        lines.append(lineOf(*fields[i], show));
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

TEST(FieldList, AGCState)
{
    EXPECT_EQ(linesOf("AGCState", Everything), (QStringList{
                                                   "FrontEndID u8 role 1",
                                                   "FrontEnd Code u5 role 1",
                                                   "AntennaID u3 role 1",
                                                   "Gain i8 decibel role 1 none -128",
                                                   "SampleVar u8 role 1 none 0",
                                                   "BlankingStat u8 percent role 1",
                                               }));
}

TEST(FieldList, ASCIIIn)
{
    EXPECT_EQ(linesOf("ASCIIIn", Everything), (QStringList{
                                                  "Sync1 ch role 2",
                                                  "Sync2 ch role 2",
                                                  "CRC u16 role 2",
                                                  "ID u16 role 2",
                                                  "BlockNumber u13 role 2",
                                                  "Revision u3 role 2",
                                                  "Length u16 byte role 2",
                                                  "TOW u32 second x 0.001 role 1 none 4294967295",
                                                  "WNc u16 week role 1 none 65535",
                                                  "TOWc u32 role 2",
                                                  "CD u8 role 1",
                                                  "Reserved1 u8 repeated role 3",
                                                  "StringLn u16 role 2",
                                                  "SensorModel ch repeated role 1",
                                                  "SensorType ch repeated role 1",
                                                  "Reserved2 u8 repeated role 3",
                                                  "ASCIIString ch repeated role 1",
                                              }));
}

TEST(FieldList, GPSNav)
{
    EXPECT_EQ(linesOf("GPSNav", Units, 10), (QStringList{
                                                "PRN u8",
                                                "Reserved u8",
                                                "WN u16 week",
                                                "CAorPonL2 u8",
                                                "URA u8",
                                                "health u8",
                                                "L2DataFlag u8",
                                                "IODC u16",
                                                "IODE2 u8",
                                                "IODE3 u8",
                                                "FitIntFlg u8",
                                                "Reserved2 u8",
                                                "T_gd f32 second",
                                                "t_oc u32 second",
                                                "a_f2 f32 secondpersecondsquared",
                                                "a_f1 f32 secondpersecond",
                                                "a_f0 f32 second",
                                                "C_rs f32 meter",
                                                "DEL_N f32 semicirclepersecond",
                                                "M_0 f64 semicircle",
                                                "C_uc f32 radian",
                                                "e f64",
                                                "C_us f32 radian",
                                                "SQRT_A f64 metersqrt",
                                                "t_oe u32 second",
                                                "C_ic f32 radian",
                                                "OMEGA_0 f64 semicircle",
                                                "C_is f32 radian",
                                                "i_0 f64 semicircle",
                                                "C_rc f32 meter",
                                                "omega f64 semicircle",
                                                "OMEGADOT f32 semicirclepersecond",
                                                "IDOT f32 semicirclepersecond",
                                                "WNt_oc u16 week",
                                                "WNt_oe u16 week",
                                            }));
    for (const char* name : {"C_ic", "IDOT", "OMEGADOT", "a_f0", "T_gd"})
        EXPECT_EQ(fieldInfo("GPSNav", name).getPrecision(), 12) << name;
    EXPECT_EQ(fieldInfo("GPSNav", "WN").getDoNotUseValue(), FieldValue::u(65535, 16));
}

TEST(FieldList, MeasEpoch2)
{
    EXPECT_EQ(linesOf("MeasEpoch2", Names, 10), (QStringList{
                                                    "N1 u8",
                                                    "SB1Length u8",
                                                    "SB2Length u8",
                                                    "CommonFlags u8",
                                                    "Multipath_Mitigation u1",
                                                    "Code_Smoothing u1",
                                                    "ReservedBit2 u1",
                                                    "Clock_Steering u1",
                                                    "Data_only u1",
                                                    "High_Dynamics u1",
                                                    "E6B_Used u1",
                                                    "ReservedBit7 u1",
                                                    "CumClkJumps u8 optional",
                                                    "Reserved u8",
                                                    "Type1 sub repeated",
                                                }));
    const FieldInfo& type1 = fieldInfo("MeasEpoch2", "Type1");
    EXPECT_EQ(type1.getType().getSubMessageInfo(), &messageInfo("MeasEpochChannelType1"));
    EXPECT_EQ(type1.getRole(), FieldInfo::Unset);
    EXPECT_EQ(fieldInfo("MeasEpoch2", "N1").getRole(), FieldInfo::Structure);
    EXPECT_EQ(fieldInfo("MeasEpoch2", "SB1Length").getRole(), FieldInfo::Structure);
}

TEST(FieldList, PVTGeodetic2)
{
    QStringList wholeFields;
    QStringList optional;
    QStringList padding;
    for (const FieldInfo* field : messageInfo("PVTGeodetic2").getFieldInfos().mid(10)) {
        if (field->getName().startsWith("_padding"))
            padding.append(lineOf(*field, Everything));
        else if (field->isOptional())
            optional.append(field->getName());
        else if (field->getType().getWidth() % 8 == 0)
            wholeFields.append(lineOf(*field, Names));
    }
    EXPECT_EQ(wholeFields,
              (QStringList{
                  "Mode u8",         "Error u8",        "Latitude f64",   "Longitude f64",
                  "Height f64",      "Undulation f32",  "Vn f32",         "Ve f32",
                  "Vu f32",          "COG f32",         "RxClkBias f64",  "RxClkDrift f32",
                  "TimeSystem u8",   "Datum u8",        "NrSV u8",        "WACorrInfo u8",
                  "ReferenceID u16", "MeanCorrAge u16", "SignalInfo u32", "AlertFlag u8",
              }));
    for (const char* name : {"NrBases", "PPPInfo", "Latency", "HAccuracy", "VAccuracy", "Misc",
                             "Baseline", "ARPMarkerOffset"})
        EXPECT_TRUE(optional.contains(name)) << name;
    EXPECT_EQ(padding, (QStringList{"_padding0 u8 optional repeated role 2",
                                    "_padding2 u8 optional repeated role 2"}));
    EXPECT_EQ(lineOf(fieldInfo("PVTGeodetic2", "Latitude"), Everything),
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
    EXPECT_EQ(lineOf(fieldInfo("MeasEpochChannelType1", "CarrierMSB"), Names), "CarrierMSB i8");
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CarrierMSB").getScaleFactor(), 65.536);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CarrierMSB").getRole(), FieldInfo::Structure);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CN0").getScaleFactor(), 0.25);
    EXPECT_EQ(fieldInfo("MeasEpochChannelType1", "CN0").getUnit(), "decibelhertz");
}

TEST(FieldList, EmbeddedSubBlocks)
{
    const QStringList lines = linesOf("ExtSensorMeasSet", Names);
    for (const char* line :
         {"Acceleration sub optional", "AngularRate sub optional", "Info sub optional",
          "Velocity sub optional", "ZeroVelocityFlag sub optional"})
        EXPECT_TRUE(lines.contains(line)) << line;
    EXPECT_EQ(fieldInfo("ExtSensorMeasSet", "Velocity").getType().getSubMessageInfo(),
              &messageInfo("ExtSensorMeasVelocity"));
}

TEST(FieldList, SubFields)
{
    EXPECT_EQ(subFieldsOf(fieldInfo("ASCIIIn", "ID")), (QStringList{"BlockNumber", "Revision"}));
    EXPECT_EQ(subFieldsOf(fieldInfo("AGCState", "FrontEndID")),
              (QStringList{"FrontEnd Code", "AntennaID"}));
    EXPECT_EQ(subFieldsOf(fieldInfo("AGCState", "Gain")), QStringList{});
    EXPECT_EQ(fieldInfo("ReceiverStatus2", "RxState").getSubFieldInfos().size(), 19);
    EXPECT_EQ(fieldInfo("ReceiverStatus2", "RxError").getSubFieldInfos().size(), 17);
    EXPECT_EQ(fieldInfo("ReceiverStatus2", "ExtError").getSubFieldInfos().size(), 4);
    EXPECT_EQ(subFieldsOf(fieldInfo("DiffCorrIn", "RTCM2Words")),
              (QStringList{"Parity", "Information", "Preceding"}));
}

TEST(FieldList, SmallSymbolTables)
{
    EXPECT_EQ(symbolsOf(fieldInfo("AGCState", "FrontEnd Code")),
              (QStringList{"0 GPSL1/E1", "1 GLOL1", "2 E6", "3 GPSL2", "4 GLOL2", "5 L5/E5a/B2a",
                           "6 E5b/B2b", "7 E5(a+b)", "8 GPSL1/GLOL1/E1", "9 GPSL2/GLOL2",
                           "10 MSS/L-band", "11 B1", "12 B3", "13 S-band", "14 B3-E6"}));
    EXPECT_EQ(symbolsOf(fieldInfo("AGCState", "AntennaID")),
              (QStringList{"0 Main", "1 Aux1", "2 Aux2"}));
    EXPECT_EQ(symbolsOf(fieldInfo("AGCState", "Gain")), QStringList{"-128 DoNotUse"});
    EXPECT_EQ(symbolsOf(fieldInfo("ASCIIIn", "WNc")), QStringList{"65535 DoNotUse"});
    EXPECT_EQ(symbolsOf(fieldInfo("ReceiverStatus2", "ExtError").getSubFieldInfos()[0][0]),
              (QStringList{"0 No", "1 Yes"}));
}

struct SymbolRange {
    int first;
    int last;
    const char* prefix;
    int start;
    int digits;
};

QStringList symbolsOf(std::initializer_list<SymbolRange> ranges)
{
    QStringList symbols;
    for (const SymbolRange& range : ranges)
        for (int value = range.first; value <= range.last; ++value)
            symbols.append(
                QString("%1 %2%3")
                    .arg(value)
                    .arg(range.prefix)
                    .arg(range.start + value - range.first, range.digits, 10, QLatin1Char('0')));
    return symbols;
}

TEST(FieldList, ConnectionDescriptors)
{
    EXPECT_EQ(symbolsOf(fieldInfo("ASCIIIn", "CD")), symbolsOf({{1, 4, "COM", 1, 1},
                                                                {33, 34, "USB", 1, 1},
                                                                {49, 50, "OTG", 1, 1},
                                                                {64, 71, "IP", 10, 2},
                                                                {97, 98, "DSK", 1, 1},
                                                                {129, 133, "NTR", 1, 1},
                                                                {161, 165, "IPS", 1, 1},
                                                                {192, 193, "BT", 1, 2},
                                                                {196, 196, "UHF", 1, 1},
                                                                {201, 205, "IPR", 1, 1},
                                                                {210, 210, "DCL", 1, 1},
                                                                {214, 214, "CAN", 1, 1}}));
}

TEST(FieldList, SatelliteIdentifiers)
{
    QStringList symbols = symbolsOf(fieldInfo("GPSNav", "PRN"));
    ASSERT_GE(symbols.size(), 244);
    EXPECT_EQ(symbols[61], "62 Rxx");
    symbols.removeAt(61);
    EXPECT_EQ(symbols.mid(0, 243), symbolsOf({{1, 37, "G", 1, 2},
                                              {38, 61, "R", 1, 2},
                                              {63, 69, "R", 25, 2},
                                              {71, 106, "E", 1, 2},
                                              {107, 119, "L", 1, 2},
                                              {120, 140, "S", 120, 3},
                                              {141, 180, "C", 1, 2},
                                              {181, 190, "J", 1, 2},
                                              {191, 197, "I", 1, 2},
                                              {198, 215, "S", 141, 3},
                                              {216, 222, "I", 8, 2},
                                              {223, 245, "C", 41, 2}}));
}

} // namespace
