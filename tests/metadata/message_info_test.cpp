#include "Lookup.h"
#include "QtPrinters.h"

#include "TQX_ASCIIIn_MessageInfo.h"
#include "TQX_GPSNav_FieldInfos.h"

namespace
{

struct MainRow {
    const char* name;
    int blockNumber;
    int version;
    bool flexrate;
    bool esoc;
    char timestamp;
    const char* description;
};

constexpr MainRow mains[] = {
    {"BatteryStatus", 4083, 1, true, true, 'R', "Battery status"},
    {"ChannelStatus", 4013, 1, true, true, 'R', "Status of the tracking for all receiver channels"},
    {"MeasEpoch2", 4027, 2, true, true, 'R', "Measurement set of one epoch"},
    {"GPSNav", 5891, 1, false, true, 'S', "GPS ephemeris and clock"},
    {"PVTGeodetic2", 4007, 2, true, true, 'R',
     "GNSS position, velocity, and time in geodetic coordinates"},
    {"DiffCorrIn", 5919, 1, false, false, 'R', "Incoming RTCM or CMR message"},
    {"ReceiverStatus2", 4014, 2, true, true, 'R', "Overall status information of the receiver"},
    {"ExtSensorMeas1", 4050, 1, true, true, 'E',
     "Measurement set of external sensors of one epoch"},
    {"ASCIIIn", 4075, 1, false, false, 'R', "ASCII input from external sensor"},
};

TEST(MessageInfo, MainBlocks)
{
    for (const MainRow& row : mains) {
        SCOPED_TRACE(row.name);
        const MessageInfo& info = messageInfo(row.name);
        EXPECT_TRUE(info.isMain());
        EXPECT_EQ(info.getShortDescriptiveText(), row.description);
        EXPECT_EQ(info.getAttribute("flexrate"), QVariant(row.flexrate));
        EXPECT_EQ(info.getAttribute("esoc"), QVariant(row.esoc));
        EXPECT_EQ(info.getAttribute("timestamp"), QVariant(static_cast<int>(row.timestamp)));
        EXPECT_EQ(info.getAttribute("version"), QVariant(row.version));
        EXPECT_EQ(info.getAttribute("blocknr"), QVariant(row.blockNumber));
        QStringList keys;
        for (const auto& attribute : info.getAttributes())
            keys.append(attribute.key);
        EXPECT_EQ(keys, (QStringList{"flexrate", "esoc", "timestamp", "version", "blocknr"}));

        ASSERT_EQ(info.getDiscriminantValues().size(), 1);
        const auto& discriminant = info.getDiscriminantValues().first();
        EXPECT_EQ(discriminant.field, info.getFieldInfo("BlockNumber"));
        EXPECT_EQ(discriminant.value.getWidth(), 13);
        EXPECT_EQ(discriminant.value.getU32(), static_cast<unsigned>(row.blockNumber));
    }
}

TEST(MessageInfo, SubBlocks)
{
    const auto infos = TQX_FormatInfo::getInstance()->getSubMessageInfos();
    ASSERT_FALSE(infos.isEmpty());
    for (const MessageInfo* info : infos) {
        SCOPED_TRACE(info->getName().toStdString());
        EXPECT_FALSE(info->isMain());
        EXPECT_TRUE(info->getAttributes().isEmpty());
        EXPECT_TRUE(info->getDiscriminantValues().isEmpty());
        EXPECT_TRUE(info->getShortDescriptiveText().isEmpty());
        EXPECT_EQ(info->getFieldInfo("Sync1"), nullptr);
        EXPECT_FALSE(info->getAttribute("blocknr").isValid());
    }
}

TEST(MessageInfo, IdentifyingFields)
{
    const auto flagged = [](const char* name) {
        QStringList fields;
        const MessageInfo& info = messageInfo(name);
        for (int i = 0; i < info.getFieldInfos().size(); ++i)
            if (info.isIdentifying(i))
                fields.append(QString::number(i) + info.getFieldInfos()[i]->getName());
        return fields;
    };
    EXPECT_EQ(flagged("AGCState"), QStringList{"0FrontEndID"});
    EXPECT_EQ(flagged("ASCIIIn"), QStringList{"10CD"});
    EXPECT_EQ(flagged("ChannelSatInfo"), (QStringList{"0SVID", "1FreqNr"}));
    EXPECT_EQ(flagged("ChannelStateInfo"), QStringList{"0Antenna"});
    EXPECT_EQ(flagged("PVTGeodetic2"), QStringList{});
}

TEST(MessageInfo, InstancesAreThoseOfTheRegistry)
{
    // The registry comes before anything that it registers.
    TQX_FormatInfo::getInstance();
    EXPECT_EQ(&messageInfo("ASCIIIn"), TQX_ASCIIIn_MessageInfo::getInstance());
    EXPECT_EQ(&fieldInfo("GPSNav", "SQRT_A"), TQX_GPSNav_SQRT_A_FieldInfo::getInstance());
}

} // namespace
