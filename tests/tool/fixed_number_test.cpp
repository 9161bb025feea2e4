#include "tqx/log/text/FixedNumber.h"

#include "FloatRepresentation.h"

#include <gtest/gtest.h>

#include <QLocale>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace
{

template<typename Real>
std::string fixed(Real value, int decimals)
{
    tqx::Buffer out;
    tqx::appendFixed(out, value, decimals);
    return std::string(out.view());
}

std::string significant(double value, int digits)
{
    tqx::Buffer out;
    tqx::appendSignificant(out, value, digits);
    return std::string(out.view());
}

struct FixedCase {
    double value;
    int decimals;
    const char* text;
};

TEST(FixedNumber, TiesGoAwayFromZero)
{
    const FixedCase cases[] = {
        {0.125, 2, "0.13"},
        {-0.125, 2, "-0.13"},
        {2.5, 0, "3"},
        {-2.5, 0, "-3"},
        {0.5, 0, "1"},
        {1.5, 0, "2"},
        {0.375, 2, "0.38"},
        {1.005, 2, "1.00"}, // the double is below the tie
        {1e15 + 0.5, 0, "1000000000000001"},
        {9.5, 0, "10"},
        {0x1p60 + 0x1p8, 1, "1152921504606847232.0"},
    };
    for (const FixedCase& each : cases)
        EXPECT_EQ(fixed(each.value, each.decimals), each.text);
}

TEST(FixedNumber, ZerosSignsAndWhatIsNotFinite)
{
    const double infinite = std::numeric_limits<double>::infinity();
    const FixedCase cases[] = {
        {0, 2, "0.00"},       {-0.0, 2, "0.00"},      {-0.004, 2, "-0.00"},
        {infinite, 2, "inf"}, {-infinite, 2, "-inf"}, {5e-324, 3, "0.000"},
    };
    for (const FixedCase& each : cases)
        EXPECT_EQ(fixed(each.value, each.decimals), each.text);
    EXPECT_EQ(fixed(std::nan(""), 2), "nan");
    EXPECT_EQ(fixed(1e300, 0).size(), 301U);
}

TEST(FixedNumber, FloatsHaveNoMoreThanTheirOwnDecimals)
{
    EXPECT_EQ(fixed(0.1F, 12), "0.100000000000");
    EXPECT_EQ(fixed(0.125F, 2), "0.13");
    EXPECT_EQ(fixed(16777216.0F, 3), "16777216.000");
}

TEST(FixedNumber, SignificantDigits)
{
    const std::pair<double, const char*> cases[] = {
        {0, "0"},
        {1234566.5, "1234567"},
        {12345678, "1.234568e+07"},
        {-0.00012345678, "-0.0001234568"},
        {0.000012345678, "1.234568e-05"},
        {0.5, "0.5"},
        {9999999.5, "1e+07"},
        {1e300, "1e+300"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(significant(value, 7), text);
}

// Every way in which a number is written, against the text that the metadata gives for it.
TEST(FixedNumber, RandomNumbersAreWrittenAsTheMetadataDoes)
{
    const QLocale before;
    QLocale::setDefault(QLocale::c());
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const int decimals = static_cast<int>(random() % 16);
        double any = 0;
        const uint64_t bits = random();
        std::memcpy(&any, &bits, sizeof any);
        const auto halves =
            static_cast<double>(static_cast<int64_t>(random()) >> random() % 64) / 2;
        for (const double value :
             {any, halves, halves * std::pow(10, -decimals), halves * 0x1p-20}) {
            const auto single = static_cast<float>(value);
            ASSERT_EQ(fixed(value, decimals),
                      FloatRepresentation::getString(value, 'f', decimals, true).toStdString());
            ASSERT_EQ(fixed(single, decimals),
                      FloatRepresentation::getString(single, 'f', decimals, true).toStdString());
            ASSERT_EQ(significant(value, 7),
                      FloatRepresentation::getString(value, 'g', 7, true).toStdString());
        }
    }
    QLocale::setDefault(before);
}

} // namespace
