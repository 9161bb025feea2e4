#include "QtPrinters.h"

#include "TQX_FormatInfo.h"
#include "TQX_Layout.h"

#include "MemLeakTracer.h"
#include "MessageInfo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{

constexpr uint32_t lastRecordType = 382;

QStringList namesOf(const QVector<const MessageInfo*>& infos)
{
    QStringList names;
    for (const MessageInfo* info : infos)
        names.append(info->getName());
    return names;
}

TEST(Registry, HoldsEveryTypeWithAMessageClassOnce)
{
    std::set<std::string> mains;
    std::set<std::string> subs;
    for (uint32_t type = 1; type <= lastRecordType; ++type) {
        const auto* layout = TQX_layout(type);
        if (layout && layout->hasMessage)
            (layout->blockNumber != 0 ? mains : subs).insert(layout->name);
    }
    const auto asSet = [](const QVector<const MessageInfo*>& infos) {
        std::set<std::string> names;
        for (const MessageInfo* info : infos)
            names.insert(info->getName().toStdString());
        return names;
    };
    const TQX_FormatInfo& format = *TQX_FormatInfo::getInstance();
    EXPECT_EQ(format.getName(), "TQX");
    EXPECT_EQ(asSet(format.getMessageInfos()), mains);
    EXPECT_EQ(asSet(format.getSubMessageInfos()), subs);
    EXPECT_EQ(static_cast<size_t>(format.getMessageInfos().size()), mains.size());
    EXPECT_EQ(static_cast<size_t>(format.getSubMessageInfos().size()), subs.size());
}

TEST(Registry, KeepsTheRegistrationOrder)
{
    // Types of the two lists as they follow each other in the catalogue, not by number or name.
    const QStringList mains = {"BatteryStatus",   "ChannelStatus",  "MeasEpoch2",
                               "GPSNav",          "PVTGeodetic2",   "DiffCorrIn",
                               "ReceiverStatus2", "ExtSensorMeas1", "ASCIIIn"};
    const QStringList subs = {"ChannelStateInfo",      "ChannelSatInfo",           "Battery",
                              "MeasEpochChannelType1", "MeasEpochChannelType2",    "AGCState",
                              "ExtSensorMeasSet",      "ExtSensorMeasAcceleration"};
    const auto only = [](QStringList names, const QStringList& wanted) {
        names.erase(
            std::remove_if(names.begin(), names.end(),
                           [&wanted](const QString& name) { return !wanted.contains(name); }),
            names.end());
        return names;
    };
    const TQX_FormatInfo& format = *TQX_FormatInfo::getInstance();
    EXPECT_EQ(only(namesOf(format.getMessageInfos()), mains), mains);
    EXPECT_EQ(only(namesOf(format.getSubMessageInfos()), subs), subs);
    EXPECT_EQ(format.getSubMessageInfos().value(0)->getName(), "ChannelStateInfo");
    EXPECT_EQ(format.getSubMessageInfos().value(1)->getName(), "ChannelSatInfo");
}

TEST(Registry, IsBuiltOnceAlthoughItsPartsAskForIt)
{
    const TQX_FormatInfo* format = TQX_FormatInfo::getInstance();
    EXPECT_EQ(TQX_FormatInfo::getInstance(), format);
    EXPECT_EQ(MemLeakTracer::getTotalAllocations("TQX_FormatInfo"), 1);
    EXPECT_EQ(MemLeakTracer::getObjectCount("TQX_FormatInfo"), 1);
    const auto all = format->getMessageInfos() + format->getSubMessageInfos();
    ASSERT_FALSE(all.isEmpty());
    for (const MessageInfo* info : all) {
        EXPECT_EQ(info->getFormatInfo(), format);
        const QString messageClass = "TQX_" + info->getName() + "_MessageInfo";
        EXPECT_EQ(MemLeakTracer::getTotalAllocations(messageClass), 1)
            << messageClass.toStdString();
        for (const FieldInfo* field : info->getFieldInfos()) {
            const QString fieldClass = "TQX_" + info->getName() + "_" +
                                       QString(field->getName()).replace(' ', '_') + "_FieldInfo";
            EXPECT_EQ(MemLeakTracer::getTotalAllocations(fieldClass), 1)
                << fieldClass.toStdString();
        }
    }
}

} // namespace
