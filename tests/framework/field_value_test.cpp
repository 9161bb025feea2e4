#include "QtPrinters.h"

#include <FieldType.h>
#include <FieldValue.h>
#include <Message.h>
#include <MessageApiEvent.h>

#include <gtest/gtest.h>

#include <limits>
#include <optional>
#include <type_traits>
#include <vector>

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// Reads a value; empty when that throws.
template<typename Read>
std::optional<double> readBack(const FieldValue& value, Read read)
{
    try {
        return static_cast<double>((value.*read)());
    } catch (const MessageApiEvent& event) {
        EXPECT_EQ(event.getType(), MessageApiEvent::FieldAccess);
        return {};
    }
}

template<typename T>
void checkInteger(T (FieldValue::*read)() const)
{
    using V = FieldValue;
    const auto max = static_cast<uint64_t>(std::numeric_limits<T>::max());
    const int64_t min = std::is_signed_v<T> ? -static_cast<int64_t>(max) - 1 : 0;
    for (const uint64_t number : {uint64_t{0}, uint64_t{1}, max - 1, max, max + 1, ~uint64_t{0}}) {
        const V value = V::u(number, 64);
        EXPECT_EQ(readBack(value, read).has_value(), number <= max) << number;
        EXPECT_EQ(readBack(value, read).value_or(value.toDouble()), value.toDouble());
    }
    for (const int64_t number : {int64_t{-1}, min, min + 1, static_cast<int64_t>(max),
                                 static_cast<int64_t>(uint64_t(min) - 1)}) {
        const V value = V::i(number, 64);
        const bool fits = number >= min && (number < 0 || static_cast<uint64_t>(number) <= max);
        EXPECT_EQ(readBack(value, read).has_value(), fits) << number;
        EXPECT_EQ(readBack(value, read).value_or(value.toDouble()), value.toDouble());
    }
    for (const V& other : {V::f32(1), V::f64(1), V::ch('a'), V(), V::subMessage(nullptr)})
        EXPECT_FALSE(readBack(other, read)) << other.toString().toStdString();
}

TEST(FieldValue, ReadsBackWhatFitsAndNothingElse)
{
    using V = FieldValue;
    checkInteger(&V::getU8);
    checkInteger(&V::getU16);
    checkInteger(&V::getU32);
    checkInteger(&V::getU64);
    checkInteger(&V::getI8);
    checkInteger(&V::getI16);
    checkInteger(&V::getI32);
    checkInteger(&V::getI64);
    EXPECT_EQ(readBack(V::f32(1.5F), &V::getF32), 1.5);
    EXPECT_EQ(readBack(V::f64(1.5), &V::getF32), std::nullopt);
    EXPECT_EQ(readBack(V::f64(0.1), &V::getF64), 0.1);
    EXPECT_EQ(readBack(V::f32(0.5F), &V::getF64), 0.5);
    EXPECT_EQ(readBack(V::i(1, 8), &V::getF64), std::nullopt);
    EXPECT_EQ(readBack(V::i(-3, 8), &V::toDouble), -3);
    EXPECT_EQ(readBack(V::ch('a'), &V::toDouble), std::nullopt);
    EXPECT_EQ(readBack(V::ch('a'), &V::getCh), 'a');
    EXPECT_EQ(readBack(V::u('a', 8), &V::getCh), std::nullopt);
    EXPECT_THROW(V::u(0, 8).getSubMessage(), MessageApiEvent);
    EXPECT_EQ(V::subMessage(nullptr).getSubMessage(), nullptr);
    try {
        V::u(300, 16).getU8();
        ADD_FAILURE();
    } catch (const MessageApiEvent& event) {
        EXPECT_EQ(event.getText(), "Reading the value 300 as unsigned integer up to 255.");
    }
}

TEST(FieldValue, IsTotallyOrderedByWhatItIsWorth)
{
    using V = FieldValue;
    // Each group holds equal values; the groups ascend.
    const std::vector<std::vector<V>> groups = {
        {V()},
        {V::f64(-infinity), V::f32(-std::numeric_limits<float>::infinity())},
        {V::i(std::numeric_limits<int64_t>::min(), 64), V::f64(-0x1p63)},
        {V::i(std::numeric_limits<int64_t>::min() + 1, 64)},
        {V::i(-20000000000, 64), V::f32(-2e10f), V::f64(-2e10)},
        {V::f64(-1.5)},
        {V::i(-1, 8), V::i(-1, 64), V::f32(-1)},
        {V::u(0, 8), V::i(0, 16), V::f64(0), V::f64(-0.0)},
        {V::f64(0.1)},
        {V::f32(0.1f), V::f64(static_cast<double>(0.1f))},
        {V::u(5, 3), V::u(5, 64), V::i(5, 32), V::f32(5)},
        {V::f64(5.5)},
        {V::u((1ull << 53), 64), V::f64(0x1p53)},
        {V::u((1ull << 53) + 1, 64), V::i((1ll << 53) + 1, 64)},
        {V::u(std::numeric_limits<uint64_t>::max(), 64)},
        {V::f64(0x1p64)},
        {V::f64(infinity)},
        {V::f64(nan), V::f32(std::numeric_limits<float>::quiet_NaN())},
        {V::ch('A')},
        {V::ch('\xE9')},
        {V::subMessage(nullptr)},
    };
    for (size_t i = 0; i < groups.size(); ++i) {
        for (size_t j = 0; j < groups.size(); ++j) {
            for (const V& a : groups[i]) {
                for (const V& b : groups[j]) {
                    EXPECT_EQ(a == b, i == j) << i << ' ' << j;
                    EXPECT_EQ(a != b, i != j) << i << ' ' << j;
                    EXPECT_EQ(a < b, i < j) << i << ' ' << j;
                    EXPECT_EQ(a >= b, i >= j) << i << ' ' << j;
                }
            }
        }
    }
}

TEST(FieldValue, HasPlainText)
{
    using V = FieldValue;
    const std::vector<std::pair<V, const char*>> rows = {
        {V(), ""},
        {V::u(std::numeric_limits<uint64_t>::max(), 64), "18446744073709551615"},
        {V::i(std::numeric_limits<int64_t>::min(), 64), "-9223372036854775808"},
        {V::f32(0.1f), "0.1"},
        {V::f64(0.1), "0.1"},
        {V::f64(static_cast<double>(0.1f)), "0.10000000149011612"},
        {V::f32(-2e10f), "-2e+10"},
        {V::f64(nan), "nan"},
        {V::ch('x'), "x"},
        {V::ch('\0'), ""},
        {V::subMessage(nullptr), "submsg"},
    };
    for (const auto& [value, text] : rows) {
        EXPECT_EQ(value.toString(), text);
    }
}

TEST(FieldType, ComparesByKindWidthAndSubMessage)
{
    const auto* other = reinterpret_cast<const MessageInfo*>(&typeid(int));
    const std::vector<std::pair<FieldType, const char*>> types = {
        {FieldType::u(8), "u8"},
        {FieldType::u(13), "u13"},
        {FieldType::i(8), "i8"},
        {FieldType::f32(), "f32"},
        {FieldType::f64(), "f64"},
        {FieldType::ch(), "ch"},
        {FieldType::subMessage(nullptr), "sub"},
        {FieldType::subMessage(other), "sub"},
    };
    for (size_t i = 0; i < types.size(); ++i) {
        EXPECT_EQ(types[i].first.toString(), types[i].second);
        for (size_t j = 0; j < types.size(); ++j) {
            EXPECT_EQ(types[i].first == types[j].first, i == j) << i << ' ' << j;
        }
    }
}

} // namespace
