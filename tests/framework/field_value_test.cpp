#include "QtPrinters.h"

#include <FieldType.h>
#include <FieldValue.h>
#include <Message.h>
#include <MessageApiEvent.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(FieldValue, ReadsBackWhatFitsAndNothingElse)
{
    using V = FieldValue;
    struct Row {
        const char* name;
        std::function<double(const V&)> read;
        std::vector<V> fits;
        std::vector<V> throws;
    };
    const V text = V::ch('a');
    const std::vector<Row> rows = {
        {"u8",
         [](const V& v) { return double(v.getU8()); },
         {V::u(255, 8), V::u(0, 64), V::i(255, 16), V::u(7, 3)},
         {V::u(256, 16), V::i(-1, 8), V::f64(1), text, V()}},
        {"u16",
         [](const V& v) { return double(v.getU16()); },
         {V::u(65535, 16), V::i(65535, 32)},
         {V::u(65536, 32), V::i(-32768, 16)}},
        {"u32",
         [](const V& v) { return double(v.getU32()); },
         {V::u(4294967295u, 32), V::u(1, 1)},
         {V::u(4294967296u, 64), V::i(-1, 32)}},
        {"u64",
         [](const V& v) { return double(v.getU64()); },
         {V::u(1ull << 63, 64), V::i(5, 8)},
         {V::i(-5, 8), V::f32(5)}},
        {"i8",
         [](const V& v) { return double(v.getI8()); },
         {V::i(-128, 8), V::i(127, 16), V::u(127, 8)},
         {V::i(-129, 16), V::u(128, 8), text}},
        {"i16",
         [](const V& v) { return double(v.getI16()); },
         {V::i(-32768, 16), V::u(32767, 16)},
         {V::i(32768, 32), V::u(32768, 16)}},
        {"i32",
         [](const V& v) { return double(v.getI32()); },
         {V::i(-2147483647 - 1, 32), V::u(2147483647, 32)},
         {V::u(2147483648u, 32)}},
        {"i64",
         [](const V& v) { return double(v.getI64()); },
         {V::i(-1, 64), V::u(1ull << 62, 64)},
         {V::u(1ull << 63, 64), V()}},
        {"f32",
         [](const V& v) { return double(v.getF32()); },
         {V::f32(1.5f)},
         {V::f64(1.5), V::u(1, 8)}},
        {"f64",
         [](const V& v) { return v.getF64(); },
         {V::f64(0.1), V::f32(0.1f)},
         {V::i(1, 8), V::subMessage(nullptr)}},
        {"number",
         [](const V& v) { return v.toDouble(); },
         {V::u(3, 8), V::i(-3, 8), V::f32(0.5f), V::f64(-0.5)},
         {text, V(), V::subMessage(nullptr)}},
    };
    for (const Row& row : rows) {
        for (const V& value : row.fits) {
            EXPECT_EQ(row.read(value), value.toDouble()) << row.name;
        }
        for (const V& value : row.throws) {
            try {
                row.read(value);
                ADD_FAILURE() << row.name << " read " << value.toString().toStdString();
            } catch (const MessageApiEvent& event) {
                EXPECT_EQ(event.getType(), MessageApiEvent::FieldAccess);
            }
        }
    }
    EXPECT_EQ(text.getCh(), 'a');
    EXPECT_THROW(V::u('a', 8).getCh(), MessageApiEvent);
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
