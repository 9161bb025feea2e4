// Where lock was lost, also at epochs that are not shown and at the start of a stretch.

#include "Generations.h"

#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/stream/BlockStream.h"

#include <gtest/gtest.h>

#include <ostream>

using namespace generations;
using tqx::Observation;
using tqx::ObservationEpoch;

namespace
{

constexpr double noPhase = -1;

struct Step {
    unsigned second;
    double lockTime; ///< noPhase: without a phase
    bool isShown;
    bool isLost; ///< expected, of epochs that are shown
};

struct Case {
    const char* name;
    std::vector<Step> steps;
};

void PrintTo(const Case& value, std::ostream* stream)
{
    *stream << value.name;
}

class LockTest : public testing::TestWithParam<Case>
{
};

ObservationEpoch epochOf(const Step& step)
{
    Observation observation;
    observation.satellite = {'G', 5};
    observation.range = 21e6;
    observation.cn0 = 45;
    observation.doppler = 100;
    observation.phase = step.lockTime == noPhase ? tqx::notMeasured : 21e6 / 0.19;
    observation.lockTime = step.lockTime == noPhase ? 0 : step.lockTime;
    ObservationEpoch epoch;
    epoch.time = uint64_t{2400} * tqx::millisPerWeek + step.second * 1000;
    epoch.observations.push_back(observation);
    return epoch;
}

} // namespace

TEST_P(LockTest, IsLostWhereItsTimeSaysSo)
{
    std::string log;
    for (const Step& step : GetParam().steps)
        log += genericBlock(epochOf(step));
    std::vector<bool> lost;
    size_t place = 0;
    tqx::ObservationGatherer gatherer([&](const ObservationEpoch& epoch) {
        const bool isShown = GetParam().steps[place++].isShown;
        if (isShown)
            lost.push_back(epoch.observations.at(0).isLost);
        return isShown;
    });
    tqx::MemorySource source(reinterpret_cast<const uint8_t*>(log.data()), log.size());
    tqx::BlockStream stream(source);
    tqx::RecordDecoder decoder;
    for (tqx::Block block = {}; stream.next(block);) {
        ASSERT_GT(decoder.decode(block), 0);
        gatherer.take(decoder.getDecoded());
    }
    gatherer.finish();
    std::vector<bool> expected;
    for (const Step& step : GetParam().steps) {
        if (step.isShown)
            expected.push_back(step.isLost);
    }
    EXPECT_EQ(lost, expected);
}

INSTANTIATE_TEST_SUITE_P(
    Times, LockTest,
    testing::Values(
        Case{"GoesOn", {{0, 50, true, false}, {1, 51, true, false}, {2, 51, true, false}}},
        Case{"FirstEpochSaysNothing", {{0, 0, true, false}, {1, 1, true, false}}},
        Case{"GoesBack", {{0, 50, true, false}, {1, 0, true, true}, {2, 1, true, false}}},
        Case{"IsShorterThanTheGap", {{0, 3, true, false}, {60, 5, true, true}}},
        Case{"GapWithoutALoss", {{0, 3, true, false}, {60, 63, true, false}}},
        Case{"LongestTimeSaysNothing",
             {{0, 65534, true, false}, {1, 65534, true, false}, {900, 65534, true, false}}},
        Case{"NoPhaseInBetween",
             {{0, 50, true, false}, {1, noPhase, true, false}, {2, 0, true, true}}},
        Case{"EpochNotShown",
             {{0, 50, true, false}, {1, 0, false, true}, {2, 1, true, true}, {3, 2, true, false}}},
        Case{"LossAtTheCut", {{0, 50, false, false}, {1, 0, true, true}, {2, 1, true, false}}}),
    [](const auto& instance) { return instance.param.name; });
