#include "tqx/gnss/compact/CompactSignal.h"

#include <gtest/gtest.h>

using tqx::CompactSignal;

TEST(CompactSignal, NearestValueWins)
{
    const struct {
        int64_t expected, residue, modulus, value;
    } cases[] = {
        {0, 0, 1000, 0},
        {1000, 3, 1000, 1003},
        {1000, 997, 1000, 997},
        {1499, 0, 1000, 1000},
        {1501, 0, 1000, 2000},
        {1500, 0, 1000, 1000},
        {-7, 990, 1000, -10},
        {-1503, 1, 1000, -1999},
        {5, 16380, 16384, -4},
        {-70000, 1000, 65536, -64536},
        {4294967296000, 1, 262144, 4294967296000 / 262144 * 262144 + 1},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(tqx::nearestTo(each.expected, each.residue, each.modulus), each.value)
            << each.expected << " " << each.residue;
        EXPECT_EQ(tqx::residueOf(each.value, each.modulus), each.residue);
    }
}

// Worked by hand. At the reference epoch, at 100 s, the code range is 21,345,678.901 m and shrinks
// by 412.5 m/s. Ten seconds later it is expected at 21,345,678.901 - 4,125 = 21,341,553.901 m. The
// true one is 21,341,559.123 m, of which the block has the rest modulo 262.144 m: 81,411 times
// 262.144 m are 21,341,405.184 m, which leaves 153.939 m. Carrier minus code was -187.250 m; it is
// -187.310 m now, of which modulo 16.384 m there are 12 times -16.384 = -196.608, and so 9.298 m.
TEST(CompactSignal, ExampleByHand)
{
    CompactSignal signal;
    signal.keep({100, 21345678901, -412.5, true, -187250}, true);
    const CompactSignal::Moment moment = {110, 100, {}};
    EXPECT_EQ(signal.completeCode(moment, 153939, 262144), 21341559123);
    EXPECT_EQ(signal.completeCarrier(9298, 16384), -187310);
    // A millisecond by which the clock was set back is 299,792.458 m.
    CompactSignal::Moment jumped = moment;
    jumped.jump = -1;
    EXPECT_EQ(signal.completeCode(jumped, tqx::residueOf(21341559123 - 299792458, 262144), 262144),
              21341559123 - 299792458);
}

TEST(CompactSignal, WithoutTheReferenceTheLastEpochCounts)
{
    CompactSignal signal;
    const auto complete = [&signal](double time, double reference, int64_t modulus,
                                    std::optional<double> rate = {}) {
        const int64_t code = 20000000000 + static_cast<int64_t>(700000 * time);
        return signal.completeCode({time, reference, rate}, tqx::residueOf(code, modulus), modulus)
                   .value_or(0) == code;
    };
    const auto keep = [&signal](double time, bool hasRate, bool isReference) {
        signal.keep({time, 20000000000 + static_cast<int64_t>(700000 * time), 700, hasRate, {}},
                    isReference);
    };
    EXPECT_FALSE(complete(1, 0, 262144)); // nothing is known
    keep(0, true, true);
    EXPECT_TRUE(complete(11, 0, 262144));
    EXPECT_FALSE(complete(30, 0, 262144)); // too far for one rate
    EXPECT_TRUE(complete(30, 0, 262144, 700));
    EXPECT_TRUE(complete(40, 0, 4194304)); // not for a larger modulus
    keep(30, true, false);
    EXPECT_TRUE(complete(31, 5, 262144)); // of that reference epoch nothing is known
    keep(31, false, false);
    EXPECT_FALSE(complete(32, 5, 262144)); // no rate at all
    EXPECT_TRUE(complete(31.1, 5, 262144));
    EXPECT_TRUE(complete(32, 5, 4194304));
}

TEST(CompactSignal, CarriersEndWithTheirLock)
{
    CompactSignal signal;
    EXPECT_FALSE(signal.completeCarrier(5, 16384));
    signal.keep({0, 20000000000, 0, true, 40000}, true);
    EXPECT_EQ(signal.completeCarrier(tqx::residueOf(40100, 16384), 16384), 40100);
    signal.keep({1, 20000000000, 0, true, {}}, false); // an epoch without a carrier
    EXPECT_EQ(signal.completeCarrier(tqx::residueOf(40100, 16384), 16384), 40100);
    signal.loseLock();
    EXPECT_FALSE(signal.completeCarrier(5, 16384));
    EXPECT_TRUE(signal.referenceAt(0));
    EXPECT_FALSE(signal.referenceAt(1));
}
