#include "tqx/simulation/PulseInput.h"

#include "tqx/log/time/GnssTime.h"

#include <cmath>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

void PulseInput::add(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr double phase = 0.371719; // part of a period, so that pulses are at no epoch
    constexpr uint8_t firstInput = 1;
    constexpr double perSecond = 1e7; // steps of a time, which is in whole milliseconds and those
    constexpr int64_t perMillisecond = 10000;
    while (m_period > 0) {
        const double elapsed = (static_cast<double>(m_count) + phase) * m_period;
        if (elapsed > epoch.elapsed)
            return;
        ++m_count;
        const int64_t before = std::llround((epoch.elapsed - elapsed) * perSecond);
        const auto week = static_cast<int64_t>(millisPerWeek) * epoch.week;
        const int64_t time = (week + epoch.towMillis) * perMillisecond - before;
        const auto millis = static_cast<uint64_t>(time / perMillisecond);
        Epoch moment = epoch;
        moment.week = static_cast<uint16_t>(millis / millisPerWeek);
        moment.towMillis = static_cast<uint32_t>(millis % millisPerWeek);
        TQX_ExtEvent1_s record;
        TQX_init_ExtEvent1(&record);
        record.Revision = 1;
        record.EventInfo = firstInput;
        record.Offset = static_cast<float>(static_cast<double>(time % perMillisecond) / perSecond);
        record.PVTAge = 0;
        record.RxClkBias = rounded(receiver.getSolution().clockBias, 1e-11);
        record.RxClkDrift = static_cast<float>(rounded(receiver.getSolution().clockDrift, 1e-12));
        log.add(moment, record, TQX_encode_ExtEvent1);
    }
}

} // namespace tqx::simulation
