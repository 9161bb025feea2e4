#include "Lookup.h"
#include "QtPrinters.h"

#include "TQX_ASCIIIn_MessageInfo.h"
#include "TQX_GPSNav_FieldInfos.h"
#include "TQX_Layout.h"
#include "TQX_MessageFactory.h"

#include "FieldType.h"
#include "MemLeakTracer.h"

using namespace Kor::MessageApi;

namespace
{

TEST(Registry, IsBuiltOnceAlthoughItsPartsAskForIt)
{
    const TQX_FormatInfo* format = TQX_FormatInfo::getInstance();
    EXPECT_EQ(TQX_FormatInfo::getInstance(), format);
    EXPECT_EQ(MemLeakTracer::getTotalAllocations("TQX_FormatInfo"), 1);
    EXPECT_EQ(MemLeakTracer::getObjectCount("TQX_FormatInfo"), 1);
    EXPECT_EQ(format->getName(), "TQX");
    ASSERT_EQ(format->getAllMessageInfos().size(), 347);
    for (const MessageInfo* info : format->getAllMessageInfos()) {
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

TEST(Registry, MainBlocks)
{
    const std::pair<const char*, QVariant::Type> attributes[] = {{"flexrate", QVariant::Bool},
                                                                 {"esoc", QVariant::Bool},
                                                                 {"timestamp", QVariant::Int},
                                                                 {"version", QVariant::Int},
                                                                 {"blocknr", QVariant::Int}};
    const char* const header[] = {"Sync1",    "Sync2",  "CRC", "ID",  "BlockNumber",
                                  "Revision", "Length", "TOW", "WNc", "TOWc"};
    for (const MessageInfo* info : TQX_FormatInfo::getInstance()->getMessageInfos()) {
        SCOPED_TRACE(info->getName().toStdString());
        EXPECT_TRUE(info->isMain());
        for (int i = 0; i < 10; ++i)
            EXPECT_EQ(info->getFieldInfos().value(i)->getName(), header[i]);
        ASSERT_EQ(info->getAttributes().size(), 5);
        for (int i = 0; i < 5; ++i) {
            EXPECT_EQ(info->getAttributes()[i].key, attributes[i].first);
            EXPECT_EQ(info->getAttributes()[i].value.type(), attributes[i].second);
        }
        ASSERT_EQ(info->getDiscriminantValues().size(), 1);
        const auto& [field, value] = info->getDiscriminantValues().first();
        EXPECT_EQ(field, info->getFieldInfo("BlockNumber"));
        EXPECT_EQ(field->getType(), FieldType::u(13));
        EXPECT_EQ(value.getWidth(), 13);
        EXPECT_EQ(value.getU32(), info->getAttribute("blocknr").toUInt());
    }
}

TEST(Registry, SubBlocks)
{
    for (const MessageInfo* info : TQX_FormatInfo::getInstance()->getSubMessageInfos()) {
        SCOPED_TRACE(info->getName().toStdString());
        EXPECT_FALSE(info->isMain());
        EXPECT_TRUE(info->getAttributes().isEmpty());
        EXPECT_TRUE(info->getDiscriminantValues().isEmpty());
        EXPECT_TRUE(info->getShortDescriptiveText().isEmpty());
        EXPECT_EQ(info->getFieldInfo("Sync1"), nullptr);
        EXPECT_FALSE(info->getAttribute("blocknr").isValid());
    }
}

TEST(Registry, SubFieldsAreThePartsOfTheirWord)
{
    TQX_FormatInfo::getInstance();
    for (const TQX_MessageType& row : TQX_messageTypes()) {
        const TQX_TypeLayout& type = *TQX_layout(static_cast<uint32_t>(row.recordType));
        const auto& fields = row.info()->getFieldInfos();
        for (int i = 0; i < fields.size(); ++i) {
            QVector<const FieldInfo*> parts;
            for (int k = 0; k < type.fieldCount; ++k) {
                if (type.fields[k].parent == i)
                    parts.append(fields[k]);
            }
            EXPECT_EQ(fields[i]->getSubFieldInfos(), parts) << type.name << type.fields[i].name;
        }
    }
}

TEST(Registry, InstancesAreThoseOfTheRegistry)
{
    // The registry comes before anything that it registers.
    TQX_FormatInfo::getInstance();
    EXPECT_EQ(&messageInfo("ASCIIIn"), TQX_ASCIIIn_MessageInfo::getInstance());
    EXPECT_EQ(&fieldInfo("GPSNav", "SQRT_A"), TQX_GPSNav_SQRT_A_FieldInfo::getInstance());
}

} // namespace
