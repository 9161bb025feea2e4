#include "QtPrinters.h"

#include <FormatInfo.h>
#include <MemLeakTracer.h>
#include <MessageApiEvent.h>
#include <PathExpression.h>

#include <QLibrary>

#include <gtest/gtest.h>

namespace
{

TEST(Unload, NothingDanglesOnceAFormatIsGone)
{
    const QString path = QStringLiteral("Loose:LooseMessage:Loose Field");
    for (int round = 0; round < 2; ++round) {
        QLibrary library(QStringLiteral(LOOSE_FORMAT_LIBRARY));
        EXPECT_THROW(PathExpression::getUniqueFieldInfo(path), MessageApiEvent);
        ASSERT_TRUE(library.load()) << library.errorString().toStdString();
        library.resolve("setUpLooseFormat")();

        const FieldInfo* field = PathExpression::getUniqueFieldInfo(path);
        ASSERT_TRUE(field);
        const MessageInfo* info = FormatInfo::getFormat("Loose")->getMessageInfos()[0];
        const QStringList texts = {
            FormatInfo::getFormat("Loose")->getName(),
            info->getName(),
            info->getShortDescriptiveText(),
            info->getAttributes()[0].key,
            info->getAttribute("loose key").toString(),
            field->getName(),
            field->getUnit(),
            *field->findSymbolicValue(FieldValue::u(1, 8)),
        };
        MessageApiEvent event;
        try {
            field->getValue(nullptr, 0);
        } catch (const MessageApiEvent& thrown) {
            event = thrown;
        }
        EXPECT_EQ(MemLeakTracer::getObjectCount("LooseField"), 1);

        ASSERT_TRUE(library.unload());
        EXPECT_EQ(FormatInfo::getFormat("Loose"), nullptr);
        EXPECT_THROW(PathExpression::getUniqueFieldInfo(path), MessageApiEvent);
        EXPECT_EQ(texts, (QStringList{"Loose", "LooseMessage", "loose description", "loose key",
                                      "loose text", "Loose Field", "loose unit", "loose name"}));
        EXPECT_EQ(event.getText(), "loose event");
        EXPECT_EQ(MemLeakTracer::getObjectCount("LooseField"), 0);
        EXPECT_EQ(MemLeakTracer::getTotalAllocations("LooseField"), round + 1);
        EXPECT_EQ(MemLeakTracer::getTotalAllocations("LooseInfo"), round + 1);
    }
}

} // namespace
