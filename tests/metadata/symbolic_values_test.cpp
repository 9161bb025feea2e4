#include "SymbolicValues.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace
{

/// Symbolic values beside a plain list of the same ones.
struct Pair {
    SymbolicValues shared;
    std::vector<SymbolicValue> plain;

    void add(const FieldValue& value, const QString& name)
    {
        shared.add(value, name);
        plain.push_back({value, name});
    }

    void check() const
    {
        ASSERT_EQ(static_cast<size_t>(shared.size()), plain.size());
        for (size_t i = 0; i < plain.size(); ++i)
            ASSERT_TRUE(shared[static_cast<int>(i)].is(plain[i].value, plain[i].name));
        for (int wanted = -3; wanted < 6; ++wanted) {
            const auto found =
                std::find_if(plain.begin(), plain.end(), [wanted](const SymbolicValue& symbol) {
                    return symbol.value == FieldValue::i(wanted, 32);
                });
            const QString* name =
                shared.find(wanted < 0 ? FieldValue::i(wanted, 8)
                                       : FieldValue::u(static_cast<unsigned>(wanted), 8));
            ASSERT_EQ(name ? *name : QString(), found == plain.end() ? QString() : found->name);
        }
    }
};

TEST(SymbolicValues, AreEachObjectsOwnWhateverOthersShare)
{
    std::mt19937 generator(7);
    const auto below = [&generator](int end) {
        return std::uniform_int_distribution<int>(0, end - 1)(generator);
    };
    std::vector<std::unique_ptr<Pair>> pairs(12);
    for (int step = 0; step < 20000; ++step) {
        std::unique_ptr<Pair>& pair = pairs[static_cast<size_t>(below(12))];
        if (!pair || below(8) == 0) {
            pair = std::make_unique<Pair>();
            continue;
        }
        // Mostly what others add in the same place, so that beginnings are alike.
        const int value = below(5) == 0 ? below(8) - 3 : static_cast<int>(pair->plain.size()) % 5;
        pair->add(value < 0 ? FieldValue::i(value, 8)
                            : FieldValue::u(static_cast<unsigned>(value), below(9) == 0 ? 5 : 8),
                  QString("name %1").arg(below(12) == 0 ? 0 : value));
        for (const auto& each : pairs) {
            if (each) {
                ASSERT_NO_FATAL_FAILURE(each->check()) << step;
            }
        }
    }
}

TEST(SymbolicValues, ThatBeginAlikeLieInOnePlace)
{
    Pair first;
    Pair second;
    for (unsigned value = 0; value < 5; ++value)
        first.add(FieldValue::u(value, 8), QString("name %1").arg(value));
    for (unsigned value = 0; value < 3; ++value)
        second.add(FieldValue::u(value, 8), QString("name %1").arg(value));
    EXPECT_EQ(first.shared.begin(), second.shared.begin());
}

} // namespace
