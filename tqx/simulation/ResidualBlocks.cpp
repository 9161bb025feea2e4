#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/UsedSatellites.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

/// Steps of residuals, of what is detectable and of test values alike.
constexpr double step = 0.001;

constexpr uint8_t raimPassed = 1;

template<typename Info>
void fillResidual(Info& info, const Residual& residual)
{
    constexpr double largest = 32; // test value that the field holds
    info.Residual = static_cast<int32_t>(steps(residual.value, step));
    info.MDB = static_cast<uint32_t>(std::min(steps(residual.detectable, step), int64_t{1} << 31));
    const double test = std::clamp(residual.value / residual.deviation, -largest, largest);
    info.WTest = static_cast<int16_t>(steps(test, step));
}

} // namespace

void addResiduals(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr uint8_t codeAndDoppler = 1 | 1 << 2 | 1 << 7; // the last: some follow
    TQX_PVTResiduals2_s record;
    TQX_init_PVTResiduals2(&record);
    size_t index = 0;
    for (const Sight& sight : receiver.getSights()) {
        if (!sight.used)
            continue;
        const Satellite& satellite = *sight.satellite;
        TQX_SatSignalInfo2_s& info = *TQX_append_PVTResiduals2_SatSignalInfo2(&record);
        info.SVID = satellite.getSvid();
        info.Type = sight.signals[0].plan->number;
        info.ObsInfo = static_cast<uint8_t>(
            frequencySlot(satellite.getSystem(), satellite.getChannel()) << 3U);
        info.Residuals = codeAndDoppler;
        info.CodeResidual = 1; // what the encoder goes by
        info.DopplerResidual = 1;
        info.Azimuth = static_cast<uint16_t>(steps(sight.azimuth(), 0.01) % 36000);
        info.Elevation = static_cast<int16_t>(steps(sight.elevation(), 0.01));
        fillResidual(info.ResidualInfoCode, receiver.getEstimator().codeResidual(index));
        fillResidual(info.ResidualInfoDoppler, receiver.getEstimator().rateResidual(index));
        ++index;
    }
    log.add(epoch, record, TQX_encode_PVTResiduals2);
}

void addIntegrity(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    const Solution& solution = receiver.getSolution();
    // The largest sum of squares that passes: five deviations above the one to be expected.
    const auto ratio = [](double sum, unsigned redundancy) {
        const double limit = redundancy + 5 * std::sqrt(2.0 * redundancy);
        return static_cast<uint16_t>(redundancy == 0 ? 65535 : steps(sum / limit, 1e-3));
    };
    TQX_RAIMStatistics2_s record;
    TQX_init_RAIMStatistics2(&record);
    record.IntegrityFlag = raimPassed;
    record.PosTestRatio = ratio(solution.positionTest, solution.positionRedundancy);
    record.VelTestRatio = ratio(solution.velocityTest, solution.velocityRedundancy);
    record.NrSV = static_cast<uint8_t>(solution.usedSatellites());
    record.SignalInfo = usedSignals(receiver);
    fillCounts(record, solution);
    log.add(epoch, record, TQX_encode_RAIMStatistics2);
}

} // namespace tqx::simulation
