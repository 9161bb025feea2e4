#include "QtPrinters.h"
#include "Toy.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <vector>

namespace
{

TEST(FieldInfo, FindsTheFirstNameOfAValue)
{
    struct Row {
        const char* what;
        std::vector<int> values;
    };
    const std::vector<Row> rows = {
        {"none", {}},
        {"dense", {0, 1, 2, 3, 4}},
        {"dense from 33", {33, 34, 35}},
        {"gaps", {1, 2, 7, 8, 100, 255}},
        {"zero last", {1, 2, 3, 9, 0}},
        {"descending", {9, 5, 3}},
        {"twice", {1, 2, 2, 1, 4}},
        {"negative", {-128, -1, 0, 3, -5}},
    };
    for (const Row& row : rows) {
        ToyField field("F", FieldType::i(16));
        for (size_t i = 0; i < row.values.size(); ++i) {
            const int value = row.values[i];
            field.addSymbolicValue(value < 0 ? FieldValue::i(value, 16)
                                             : FieldValue::u(static_cast<unsigned>(value), 16),
                                   QString::number(i));
        }
        EXPECT_EQ(static_cast<size_t>(field.getSymbolicValues().size()), row.values.size());
        for (int wanted = -200; wanted <= 300; ++wanted) {
            QString expected;
            for (size_t i = 0; i < row.values.size() && expected.isEmpty(); ++i) {
                expected = row.values[i] == wanted ? QString::number(i) : QString();
            }
            const auto asUnsigned = FieldValue::u(static_cast<unsigned>(wanted), 16);
            const QString* found =
                field.findSymbolicValue(wanted < 0 ? FieldValue::i(wanted, 16) : asUnsigned);
            EXPECT_EQ(found ? *found : QString(), expected) << row.what << ' ' << wanted;
        }
    }
}

TEST(FieldInfo, ScalesForPeople)
{
    struct Row {
        double scale; ///< 0: none
        int precision;
        FieldValue value;
        const char* text;
    };
    using V = FieldValue;
    const std::vector<Row> rows = {
        {0, -1, V::u(12345, 16), "12345"},
        {0, -1, V::i(-5, 8), "-5"},
        {0, 2, V::f64(1.005), "1.00"},
        {0, -1, V::f32(0.5f), "0.500000"},
        {0.001, -1, V::u(345600001, 32), "345600.001"},
        {0.1, -1, V::i(-35, 16), "-3.5"},
        {0.25, -1, V::u(181, 8), "45.25"},
        {0.001953125, -1, V::u(1, 16), "0.001953125"},
        {6.25e-9, -1, V::u(2, 16), "0.00000001250"},
        {1.0 / 3600, -1, V::u(3600, 16), "1.000000"},
        {10, -1, V::u(12, 16), "120"},
        {1000, 0, V::u(12, 16), "12000"},
        {4294967.296, -1, V::u(2, 8), "8589934.592"},
        {1e-22, -1, V::u(3, 8), "0.0000000000000000000003"},
        {0.5, 1, V::f64(3), "1.5"},
        {1e-22, 2, V::f32(121.25f), "1.2125e-20"},
        {1e-9, 9, V::f32(0.25f), "0.000000000"},
        {1, -1, V::ch('x'), "x"},
    };
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    for (const Row& row : rows) {
        ToyField field("F", FieldType::u(8));
        if (row.scale > 0) {
            field.setScaleFactor(row.scale);
        }
        field.setPrecision(static_cast<signed char>(row.precision));
        EXPECT_EQ(field.toScaledString(row.value), row.text) << row.scale;
    }
    QLocale::setDefault(before);

    ToyField mask("Mask", FieldType::u(64));
    mask.setRepresentationMode(FieldValue::BitMask);
    EXPECT_EQ(mask.toScaledString(V::u(5, 10)), "0x005");
    EXPECT_EQ(mask.toScaledString(V::u(~0ull, 64)), "0xffffffffffffffff");
}

/// Restores the statics of Message that a test changes.
struct DoNotUseSettings {
    QString text = Message::doNotUseString;
    bool isUsed = Message::useDoNotUseString;
    ~DoNotUseSettings()
    {
        Message::doNotUseString = text;
        Message::useDoNotUseString = isUsed;
    }
};

TEST(FieldInfo, StoredTextPrefersNamesForIntegersAndDoNotUseForFloats)
{
    const ToyInfo info(QStringLiteral("Toy"));
    const ToyMessage message(&info, {{FieldValue::u(255, 32)}, {FieldValue::f64(255)}});
    const DoNotUseSettings restore;
    Message::doNotUseString = QStringLiteral("n/a");

    ToyField integer("I", FieldType::u(32));
    integer.setUnit(QStringLiteral("millivolt"));
    integer.setScaleFactor(0.001);
    EXPECT_EQ(integer.getValueString(&message, 0, false), "255");
    EXPECT_EQ(integer.getValueString(&message, 0, true), "255 millivolt");
    EXPECT_EQ(integer.getValueString(&message), "0.255 millivolt");
    integer.setDoNotUseValue(FieldValue::u(255, 8));
    EXPECT_EQ(integer.getValueString(&message, 0, true), "n/a");
    EXPECT_EQ(integer.getValueString(&message), "n/a");
    Message::useDoNotUseString = false;
    EXPECT_EQ(integer.getValueString(&message, 0, true), "");
    integer.addSymbolicValue(FieldValue::u(255, 8), QStringLiteral("DoNotUse"));
    EXPECT_EQ(integer.getValueString(&message, 0, true), "DoNotUse");
    EXPECT_THROW(integer.getValueString(&message, 1, true), MessageApiEvent);

    ToyField real("F", FieldType::f64(), 1);
    real.setPrecision(1);
    EXPECT_EQ(real.getValueString(&message, 0, true), "255.0");
    real.addSymbolicValue(FieldValue::f64(255), QStringLiteral("DoNotUse"));
    EXPECT_EQ(real.getValueString(&message, 0, true), "DoNotUse");
    real.setDoNotUseValue(FieldValue::f64(255));
    EXPECT_EQ(real.getValueString(&message, 0, true), "");
    Message::useDoNotUseString = true;
    EXPECT_EQ(real.getValueString(&message, 0, true), "n/a");
}

TEST(FieldInfo, OneTextShowsAllValues)
{
    using V = FieldValue;
    const ToyInfo info(QStringLiteral("Toy"));
    const ToyMessage message(&info, {{V::u(3, 8), V::u(4, 8), V::u(255, 8)},
                                     {V::ch('w'), V::ch('e'), V::ch('t'), V::ch('\0'), V::ch('x')},
                                     {}});
    ToyField numbers("N", FieldType::u(8), 0);
    numbers.setUnit(QStringLiteral("second"));
    numbers.addSymbolicValue(V::u(4, 8), QStringLiteral("four"));
    numbers.setDoNotUseValue(V::u(255, 8));
    EXPECT_EQ(numbers.getValueString(&message), "3 four DoNotUse second");
    EXPECT_EQ(ToyField("T", FieldType::ch(), 1).getValueString(&message), "wet");
    EXPECT_EQ(ToyField("E", FieldType::u(8), 2).getValueString(&message), "");
    EXPECT_EQ(numbers.getValueString(nullptr), "");
}

} // namespace
