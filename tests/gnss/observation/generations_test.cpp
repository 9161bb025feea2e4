// The same epochs in the measurement blocks of each generation give the same observations, as far
// as the resolution of the block goes.

#include "Generations.h"

#include "tqx/simulation/Simulation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

using namespace generations;
using tqx::Observation;
using tqx::ObservationEpoch;

namespace
{

struct Case {
    const char* name;
    std::string (*encode)(const ObservationEpoch& epoch);
    double range, phase; ///< half a step
    double doppler;      ///< likewise in hertz; below 0 where the block has none
    bool hasJumps;       ///< the block has the jumps of the clock
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class GenerationTest : public testing::TestWithParam<Case>
{
};

/// The epochs of all systems at a place that sees them, with lost locks and jumps of the clock.
const std::vector<ObservationEpoch>& truth()
{
    static const std::vector<ObservationEpoch> epochs = [] {
        tqx::simulation::SimulationSettings settings;
        settings.duration = 400;
        settings.periodMillis = 5000;
        settings.receiver.systems = 127;
        settings.receiver.slipsPerHour = 40;
        settings.receiver.clockDrift = 1e-5;
        settings.track.start = {0.23, 1.75, 20};
        tqx::Buffer log;
        simulate(settings, log);
        return gather(std::string(log.view()));
    }();
    return epochs;
}

bool isNear(double value, double expected, double tolerance)
{
    return std::isnan(expected) ? std::isnan(value) : std::fabs(value - expected) <= tolerance;
}

void expectSame(const Observation& found, const Observation& expected, const Case& limits)
{
    SCOPED_TRACE(expected.satellite.text() + ' ' + expected.code.band + expected.code.attribute);
    EXPECT_EQ(found.satellite, expected.satellite);
    EXPECT_EQ(found.code, expected.code);
    EXPECT_EQ(found.channel, expected.channel);
    EXPECT_EQ(found.isHalfCycle, expected.isHalfCycle);
    EXPECT_EQ(found.isLost, expected.isLost);
    EXPECT_TRUE(isNear(found.range, expected.range, limits.range)) << found.range;
    EXPECT_TRUE(isNear(found.phase, expected.phase, limits.phase)) << found.phase;
    EXPECT_TRUE(isNear(found.cn0, expected.cn0, 1e-9)) << found.cn0;
    EXPECT_TRUE(isNear(found.lockTime, expected.lockTime, 1e-9)) << found.lockTime;
    if (limits.doppler < 0) {
        EXPECT_TRUE(std::isnan(found.doppler));
    } else {
        EXPECT_TRUE(isNear(found.doppler, expected.doppler, limits.doppler)) << found.doppler;
    }
}

} // namespace

TEST_P(GenerationTest, GivesTheSameObservations)
{
    std::string log;
    for (const ObservationEpoch& epoch : truth())
        log += GetParam().encode(epoch);
    const std::vector<ObservationEpoch> found = gather(log);
    ASSERT_EQ(found.size(), truth().size());
    size_t lost = 0;
    for (size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].time, truth()[i].time);
        EXPECT_EQ(found[i].clockJumps, GetParam().hasJumps ? truth()[i].clockJumps : 0);
        ASSERT_EQ(found[i].observations.size(), truth()[i].observations.size());
        for (size_t k = 0; k < found[i].observations.size(); ++k) {
            expectSame(found[i].observations[k], truth()[i].observations[k], GetParam());
            lost += found[i].observations[k].isLost ? 1 : 0;
        }
    }
    EXPECT_GT(lost, 10U);
    EXPECT_NE(truth().back().clockJumps, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, GenerationTest,
    testing::Values(Case{"MeasEpoch1", firstBlock, 0.0006, 0.0006, 0.00006, true},
                    // Centimetres of code; the carrier is counted from them.
                    Case{"ShortMeasEpoch", shortBlock, 0.0051, 0.0006, -1, false},
                    // Carriers in 512ths of a cycle, Doppler in millimetres a second.
                    Case{"MeasFullRange", fullRangeBlock, 0.0006, 0.0011, 0.0043, false},
                    Case{"GenMeasEpoch", genericBlock, 0.0006, 0.0006, 0.00006, true}),
    [](const auto& instance) { return instance.param.name; });

TEST(Generations, BestOfAnEpochCounts)
{
    const ObservationEpoch& full = truth().front();
    ObservationEpoch part = full;
    part.observations.resize(3);
    const auto doppler = [](const std::string& log) {
        const auto epochs = gather(log);
        return epochs.size() == 1 ? epochs[0].observations[0].doppler : 0;
    };
    const double best = full.observations[0].doppler;
    for (const std::string& log : {shortBlock(part) + firstBlock(full) + shortBlock(part),
                                   firstBlock(part) + fullRangeBlock(part) + genericBlock(full),
                                   genericBlock(full) + fullRangeBlock(part)}) {
        EXPECT_NEAR(doppler(log), best, 0.0001);
        EXPECT_EQ(gather(log)[0].observations.size(), full.observations.size());
    }
}

TEST(Generations, AdditionalDataCompleteTheObservations)
{
    const ObservationEpoch& first = truth()[0];
    const ObservationEpoch& second = truth()[1];
    // Before or after the measurements; an interruption shows in nothing but the count.
    const auto epochs = gather(extraBlock(first, 7) + genericBlock(first) + genericBlock(second) +
                               extraBlock(second, 8));
    ASSERT_EQ(epochs.size(), 2U);
    for (size_t i = 0; i < epochs.size(); ++i) {
        for (size_t k = 0; k < epochs[i].observations.size(); ++k) {
            const Observation& found = epochs[i].observations[k];
            EXPECT_NEAR(found.cn0, truth()[i].observations[k].cn0 + 0.21875, 1e-9);
            EXPECT_NEAR(found.rangeDeviation, 0.1, 1e-9);
            EXPECT_NEAR(found.phaseDeviation, 0.004, 1e-9);
            EXPECT_NEAR(found.multipath, -0.25, 1e-9);
            EXPECT_NEAR(found.smoothing, 0.05, 1e-9);
            EXPECT_EQ(found.isLost, i == 1);
        }
    }
}

TEST(Generations, SlipsThatAreNotReportedAreOfWholeCycles)
{
    const auto epochsOf = [](double slips) {
        tqx::simulation::SimulationSettings settings;
        settings.duration = 60;
        settings.receiver.systems = 1;
        settings.receiver.slipsPerHour = slips;
        settings.receiver.hidesSlips = true;
        tqx::Buffer log;
        simulate(settings, log);
        return gather(std::string(log.view()));
    };
    const auto clean = epochsOf(0);
    const auto slipped = epochsOf(100);
    ASSERT_EQ(slipped.size(), clean.size());
    size_t changed = 0;
    for (size_t i = 0; i < clean.size(); ++i) {
        ASSERT_EQ(slipped[i].observations.size(), clean[i].observations.size());
        for (size_t k = 0; k < clean[i].observations.size(); ++k) {
            const Observation& observation = slipped[i].observations[k];
            const double cycles = observation.phase - clean[i].observations[k].phase;
            EXPECT_NEAR(cycles, std::round(cycles), 0.002);
            EXPECT_FALSE(observation.isLost);
            changed += std::fabs(cycles) > 0.5 ? 1 : 0;
        }
    }
    EXPECT_GT(changed, 10U);
}
