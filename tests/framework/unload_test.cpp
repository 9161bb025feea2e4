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
        const FormatInfo* format = FormatInfo::getFormat("Loose");
        const MessageInfo* info = format->getMessageInfos()[0];
        const QStringList texts = {
            format->getName(),
            info->getName(),
            info->getShortDescriptiveText(),
            info->getAttributes()[0].key,
            info->getAttribute("loose key").toString(),
            field->getName(),
            field->getUnit(),
            *field->findSymbolicValue(FieldValue::u(1, 8)),
        };
        EXPECT_EQ(MemLeakTracer::getObjectCount("ToyField"), 1);

        ASSERT_TRUE(library.unload());
        EXPECT_EQ(FormatInfo::getFormat("Loose"), nullptr);
        EXPECT_EQ(texts, (QStringList{"Loose", "LooseMessage", "loose description", "loose key",
                                      "loose text", "Loose Field", "loose unit", "loose name"}));
        EXPECT_EQ(MemLeakTracer::getObjectCount("ToyField"), 0);
    }
}

} // namespace
