#include "QtPrinters.h"

#include "TQX_FieldFacts.h"
#include "TQX_FieldRow.h"
#include "TQX_FormatInfo.h"
#include "TQX_Layout.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <gtest/gtest.h>

#include <string>

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t lastRecordType = TQX_lastRecordType;

QString text(std::string_view characters)
{
    return QString::fromUtf8(characters.data(), static_cast<int>(characters.size()));
}

/// The number of a value of a field, in the form that the facts have it in.
FieldValue integerValue(const TQX_FieldLayout& layout, uint64_t bits)
{
    const bool isSigned = layout.type == TQX_MemberType::I8 || layout.type == TQX_MemberType::I16 ||
                          layout.type == TQX_MemberType::I32;
    return isSigned ? FieldValue::i(static_cast<int64_t>(bits), layout.width)
                    : FieldValue::u(bits, layout.width);
}

void compareNames(const FieldInfo& field, const TQX_FieldLayout& layout,
                  const TQX_FieldFacts& facts)
{
    const auto& symbols = field.getSymbolicValues();
    const TQX_NamedValues named = TQX_namedValues(facts);
    int next = 0;
    for (const TQX_NamedValue& value : named) {
        ASSERT_LT(next, symbols.size());
        EXPECT_EQ(symbols[next].name, text(value.name));
        EXPECT_EQ(symbols[next].value, integerValue(layout, static_cast<uint64_t>(value.value)));
        ++next;
    }
    if (facts.has(TQX_FieldFacts::NamesDoNotUse)) {
        ASSERT_LT(next, symbols.size());
        EXPECT_EQ(symbols[next].name, "DoNotUse");
        EXPECT_EQ(symbols[next].value, field.getDoNotUseValue());
        ++next;
    }
    EXPECT_EQ(next, symbols.size());
}

void compareDoNotUse(const FieldInfo& field, const TQX_FieldLayout& layout,
                     const TQX_FieldFacts& facts)
{
    ASSERT_EQ(field.hasDoNotUseValue(), facts.has(TQX_FieldFacts::HasDoNotUse));
    if (!field.hasDoNotUseValue())
        return;
    const FieldValue& value = field.getDoNotUseValue();
    if (value.isFloat()) {
        EXPECT_EQ(value.getF64(), TQX_realDoNotUse(facts));
    } else {
        EXPECT_EQ(value, integerValue(layout, TQX_doNotUse(facts)));
    }
}

void compareField(const FieldInfo& field, bool isIdentifying, const TQX_FieldLayout& layout,
                  const TQX_FieldFacts& facts)
{
    using Facts = TQX_FieldFacts;
    EXPECT_EQ(field.getName(), layout.name);
    EXPECT_EQ(field.getUnit(), text(TQX_unit(facts)));
    EXPECT_EQ(field.hasScaleFactor(), facts.scale != 0);
    EXPECT_EQ(field.hasScaleFactor() ? field.getScaleFactor() : 0, TQX_scale(facts));
    EXPECT_EQ(field.getPrecision(), facts.precision);
    EXPECT_EQ(static_cast<int>(field.getRole()), static_cast<int>(facts.role));
    EXPECT_EQ(field.isOptional(), facts.has(Facts::Optional));
    EXPECT_EQ(field.isRepeated(), facts.has(Facts::Repeated));
    EXPECT_EQ(field.isVirtual(), facts.has(Facts::Virtual));
    EXPECT_EQ(field.getRepresentationMode() == FieldValue::BitMask, facts.has(Facts::BitMask));
    EXPECT_EQ(isIdentifying, facts.has(Facts::Identifying));
    EXPECT_EQ(field.getSubFieldInfos().size(), facts.subFields);
    compareDoNotUse(field, layout, facts);
    compareNames(field, layout, facts);
}

void compareMain(const MessageInfo& info, const TQX_TypeFacts& facts)
{
    EXPECT_EQ(info.getShortDescriptiveText(), text(TQX_description(facts)));
    EXPECT_EQ(info.getAttribute("version").toInt(), facts.generation);
    EXPECT_EQ(info.getAttribute("flexrate").toBool(), facts.flexrate);
    EXPECT_EQ(info.getAttribute("esoc").toBool(), facts.esoc);
    EXPECT_EQ(info.getAttribute("timestamp").toInt(), facts.timestamp);
}

TEST(Facts, AreThoseOfTheRegistry)
{
    const TQX_FormatInfo& format = *TQX_FormatInfo::getInstance();
    int registered = 0;
    int fieldCount = 0;
    for (uint32_t number = 1; number <= lastRecordType; ++number) {
        const TQX_TypeLayout& type = *TQX_layout(number);
        SCOPED_TRACE(type.name);
        const TQX_TypeFacts* facts = TQX_typeFacts(number);
        ASSERT_TRUE(facts);
        const MessageInfo* info = format.getMessageInfo(QLatin1String(type.name));
        ASSERT_EQ(info != nullptr, type.hasMessage);
        ASSERT_EQ(facts->registration != 0, type.hasMessage);
        if (!info)
            continue;
        ++registered;
        if (info->isMain())
            compareMain(*info, *facts);
        ASSERT_EQ(info->getFieldInfos().size(), type.fieldCount);
        for (int i = 0; i < type.fieldCount; ++i) {
            SCOPED_TRACE(type.fields[i].name);
            compareField(*info->getFieldInfos()[i], info->isIdentifying(i), type.fields[i],
                         TQX_fieldFacts(number)[i]);
            ++fieldCount;
        }
    }
    EXPECT_EQ(registered, 347);
    EXPECT_EQ(fieldCount, 5891);
}

TEST(Facts, OrderOfTheRegistry)
{
    std::map<unsigned, const char*> ordered;
    for (uint32_t number = 1; number <= lastRecordType; ++number) {
        if (const unsigned place = TQX_typeFacts(number)->registration)
            ordered[place] = TQX_layout(number)->name;
    }
    QStringList names;
    for (const auto& [place, name] : ordered)
        names += name;
    QStringList expected;
    for (const MessageInfo* info : TQX_FormatInfo::getInstance()->getAllMessageInfos())
        expected += info->getName();
    EXPECT_EQ(names, expected);
}

/// What has no message class is in no registry, so what is known of it is written out here.
TEST(Facts, TypesWithoutMessageClass)
{
    const TQX_TypeLayout& type = *TQX_layout(TQX_recordType(4263));
    ASSERT_FALSE(type.hasMessage);
    const TQX_TypeFacts& facts = *TQX_typeFacts(type.recordType);
    EXPECT_EQ(facts.timestamp, 'R');
    for (int i = 0; i < type.fieldCount; ++i) {
        if (type.fields[i].name != std::string("TOW"))
            continue;
        const TQX_FieldFacts& tow = TQX_fieldFacts(type.recordType)[i];
        EXPECT_EQ(TQX_unit(tow), "second");
        EXPECT_EQ(TQX_scale(tow), 0.001);
        EXPECT_TRUE(TQX_isDoNotUse(tow, 0xffffffffU));
        EXPECT_FALSE(TQX_isDoNotUse(tow, 0));
        return;
    }
    FAIL() << "no TOW";
}

TEST(Facts, NoSuchType)
{
    EXPECT_EQ(TQX_typeFacts(0), nullptr);
    EXPECT_EQ(TQX_typeFacts(lastRecordType + 1), nullptr);
    EXPECT_EQ(TQX_fieldFacts(UINT32_MAX), nullptr);
}

} // namespace
