#include "options/Numbers.h"
#include "tqx/log/DataError.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

// What options take for a number.

using namespace tqx::tool;

namespace
{

constexpr uint64_t largest = 0xffffffffffffffff;

std::optional<double> tried(const std::function<double()>& read)
{
    try {
        return read();
    } catch (const tqx::DataError& error) {
        EXPECT_LT(std::string(error.what()).size(), 200U);
        return std::nullopt;
    }
}

struct Case {
    std::string text;
    std::optional<double> value; ///< nothing where it is refused
};

void check(const std::vector<Case>& cases, const std::function<double(std::string_view)>& read)
{
    for (const Case& one : cases)
        EXPECT_EQ(tried([&] { return read(one.text); }), one.value) << one.text;
}

} // namespace

TEST(Numbers, WholeOnesAreDigitsAlone)
{
    check({{"8", 8},
           {"010", 10},
           {"08", 8},
           {"1000", 1000},
           {"1001", {}},
           {"0", {}},
           {"-1", {}},
           {"+1", {}},
           {"0x10", {}},
           {"1e3", {}},
           {"1.0", {}},
           {" 1", {}},
           {"1 ", {}},
           {"", {}},
           {"1'000", {}},
           {"1_000", {}},
           {"18446744073709551617", {}},
           {std::string(100000, '9'), {}}},
          [](std::string_view text) { return static_cast<double>(numbers::whole(text, 1, 1000)); });
    EXPECT_EQ(numbers::whole("18446744073709551615", 0, largest), largest);
    EXPECT_THROW(numbers::whole("18446744073709551616", 0, largest), tqx::DataError);
}

TEST(Numbers, RealOnesAreDecimalAndFinite)
{
    check({{"0", 0},      {"-0.5", -0.5}, {".5", 0.5},    {"1e2", 100},
           {"100", 100},  {"010", 10},    {"100.1", {}},  {"-100.1", {}},
           {"nan", {}},   {"-nan", {}},   {"inf", {}},    {"-infinity", {}},
           {"1e999", {}}, {"0x1p3", {}},  {"1h", {}},     {"1,5", {}},
           {" 1", {}},    {"1 ", {}},     {"+1", {}},     {"", {}},
           {"-", {}},     {".", {}},      {"nan(1)", {}}, {std::string("1\0", 2), {}}},
          [](std::string_view text) { return numbers::real(text, -100, 100); });
}

TEST(Numbers, SizesHaveUnits)
{
    check({{"0", 0},
           {"12", 12},
           {"500MB", 5e8},
           {"500mb", 5e8},
           {"1GiB", 1073741824},
           {"2kB", 2000},
           {"3B", 3},
           {"1TiB", 1099511627776},
           {"-1", {}},
           {"1.5GB", {}},
           {"GB", {}},
           {"1 GB", {}},
           {"1XB", {}},
           {"20000000TB", {}},
           {"99999999999999999999", {}},
           {"nan", {}}},
          [](std::string_view text) { return static_cast<double>(numbers::bytes(text)); });
}
