#include "QtPrinters.h"

#include "FieldInfo.h"
#include "FormatInfo.h"
#include "MemLeakTracer.h"
#include "Message.h"
#include "MessageApiEvent.h"
#include "MessageInfo.h"
#include "TQX_FormatInfo.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <thread>

namespace
{

/// Texts of every kind that the metadata returns, read while the plug-in is there.
struct Texts {
    QStringList ofFields;
    QString ofAnEvent;
};

void append(const FieldInfo& field, Texts& texts)
{
    texts.ofFields.append(field.getName());
    texts.ofFields.append(field.getUnit());
    for (const auto& symbol : field.getSymbolicValues())
        texts.ofFields.append(symbol.name);
    try {
        field.getValue(nullptr, 0);
    } catch (const MessageApiEvent& event) {
        texts.ofAnEvent = event.getText();
    }
}

Texts textsOf(const FormatInfo& format)
{
    Texts texts;
    texts.ofFields.append(format.getName());
    for (const MessageInfo* info : format.getMessageInfos() + format.getSubMessageInfos()) {
        texts.ofFields.append(info->getName());
        texts.ofFields.append(info->getShortDescriptiveText());
        for (const auto& attribute : info->getAttributes())
            texts.ofFields.append(attribute.key);
        for (const FieldInfo* field : info->getFieldInfos())
            append(*field, texts);
    }
    return texts;
}

TEST(Unload, ThePlugInGoesAwayAndLeavesNothingBehind)
{
    Texts before;
    for (int round = 1; round <= 2; ++round) {
        void* library = dlopen(TQX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_TRUE(library) << dlerror();
        using GetInstance = const TQX_FormatInfo* (*)();
        const auto getInstance =
            reinterpret_cast<GetInstance>(dlsym(library, "_ZN14TQX_FormatInfo11getInstanceEv"));
        ASSERT_TRUE(getInstance);
        int typesWhenFound = -1;
        std::thread finder([&] {
            const FormatInfo* found = nullptr;
            while (!found)
                found = FormatInfo::getFormat("TQX");
            typesWhenFound = found->getAllMessageInfos().size();
        });
        const FormatInfo* format = getInstance();
        finder.join();
        EXPECT_EQ(typesWhenFound, 347) << "listed before its set-up was complete";
        EXPECT_EQ(FormatInfo::getFormat("TQX"), format);
        const Texts texts = textsOf(*format);
        EXPECT_GT(texts.ofFields.size(), 500);
        EXPECT_EQ(MemLeakTracer::getObjectCount("TQX_AGCState_Gain_FieldInfo"), 1);

        ASSERT_EQ(dlclose(library), 0);
        EXPECT_EQ(dlopen(TQX_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "still loaded";
        EXPECT_EQ(MemLeakTracer::getUnbalancedNames(), QStringList());
        EXPECT_EQ(MemLeakTracer::getTotalAllocations("TQX_AGCState_Gain_FieldInfo"), round);
        EXPECT_EQ(MemLeakTracer::getTotalAllocations("TQX_FormatInfo"), round);
        EXPECT_EQ(FormatInfo::getFormat("TQX"), nullptr);
        EXPECT_TRUE(texts.ofFields.contains("FrontEnd Code"));
        EXPECT_TRUE(texts.ofFields.contains("E5(a+b)"));
        EXPECT_TRUE(texts.ofFields.contains("decibel"));
        EXPECT_TRUE(texts.ofAnEvent.startsWith("Requesting value for a field "));
        if (round == 2) {
            EXPECT_EQ(texts.ofFields, before.ofFields);
        }
        before = texts;
    }
}

} // namespace
