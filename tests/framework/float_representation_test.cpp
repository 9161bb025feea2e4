#include "QtPrinters.h"

#include <FloatRepresentation.h>

#include <QLocale>

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

template<typename Real>
struct Row {
    Real value;
    char format;
    int precision;
    const char* text;
};

template<typename Real>
void checkPlain(std::initializer_list<Row<Real>> rows)
{
    for (const Row<Real>& row : rows) {
        EXPECT_EQ(FloatRepresentation::getString(row.value, row.format, row.precision, false),
                  row.text);
    }
}

TEST(FloatRepresentation, PlainFormIsThatOfC)
{
    constexpr double most = std::numeric_limits<double>::max();
    checkPlain<double>({
        {0.5, 'f', 3, "0.500"},
        {-1234567.8915, 'f', 2, "-1234567.89"},
        {0.1, 'f', 18, "0.100000000000000006"},
        {1e22, 'f', 0, "10000000000000000000000"},
        {12345.678, 'e', 2, "1.23e+04"},
        {12345.678, 'g', 3, "1.23e+04"},
        {0.1, 'g', -1, "0.1"},
        {-infinity, 'f', 3, "-inf"},
        {std::numeric_limits<double>::quiet_NaN(), 'f', 3, "nan"},
        {most, 'g', 4, "1.798e+308"},
    });
    EXPECT_EQ(FloatRepresentation::getString(most, 'f', 400, false).size(), 309 + 1 + 400);
}

TEST(FloatRepresentation, FloatsShowTheirOwnDigits)
{
    checkPlain<float>({
        {0.1F, 'f', 3, "0.100"},
        {0.1F, 'f', 12, "0.100000000000"},
        {0.1F, 'g', 17, "0.1"},
        {0.1F, 'e', 12, "1.000000000000e-01"},
        {0.1F, 'f', -1, "0.1"},
        {263.533F, 'f', 6, "263.533000"},
        {1.0015F, 'f', 3, "1.002"},
        {1.0005F, 'f', 3, "1.000"},
        {3.F, 'f', 0, "3"},
        {-2e10F, 'f', 3, "-20000000000.000"},
        {std::numeric_limits<float>::infinity(), 'f', 3, "inf"},
    });
}

TEST(FloatRepresentation, DisplayFollowsTheDefaultLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(FloatRepresentation::getString(1234.5, 'f', 3, true), "1.234,500");
    EXPECT_EQ(FloatRepresentation::getString(1234.5f, 'f', 12, true), "1.234,500000000000");
    EXPECT_EQ(FloatRepresentation::getString(0.1f, 'g', -1, true), "0,1");
    EXPECT_EQ(FloatRepresentation::getString(1234.5, 'f', 3, false), "1234.500");
    QLocale::setDefault(before);
}

} // namespace
