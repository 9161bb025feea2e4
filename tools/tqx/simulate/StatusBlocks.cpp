#include "Blocks.h"

#include <algorithm>
#include <cmath>

namespace tool
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t upTimeAtStart = 600;

void addFrontEnd(TQX_ReceiverStatus2_s& record, uint8_t code, double gain, Random& random)
{
    TQX_AGCState_s& state = *TQX_append_ReceiverStatus2_AGCState(&record);
    state.FrontEndID = code;
    state.Gain = static_cast<int8_t>(steps(gain + random.normal(0.4), 1));
    state.SampleVar = static_cast<uint8_t>(steps(100 + random.normal(1.5), 1));
    state.BlankingStat = static_cast<uint8_t>(random.chance(0.1) ? 1 : 0);
}

} // namespace

void addReceiverState(BlockLog& log, const Epoch& epoch, Random& random)
{
    // Antenna fed, week, time of week and fine time known, solution valid, corrections come in.
    constexpr uint32_t state = 1U << 0U | 1U << 3U | 1U << 4U | 1U << 5U | 1U << 7U | 1U << 8U;
    TQX_ReceiverStatus2_s record;
    TQX_init_ReceiverStatus2(&record);
    record.CPULoad =
        static_cast<uint8_t>(std::clamp<int64_t>(steps(31 + random.normal(3), 1), 1, 100));
    record.UpTime = upTimeAtStart + static_cast<uint32_t>(epoch.elapsed);
    record.RxState = state;
    record.Temperature = static_cast<uint8_t>(
        steps(44 + 3 * std::sin(2 * pi * epoch.elapsed / 7200) + random.normal(0.2), 1));
    addFrontEnd(record, 0, 38, random);
    addFrontEnd(record, 3, 41, random);
    addFrontEnd(record, 5, 36, random);
    log.add(epoch, record, TQX_encode_ReceiverStatus2);
}

void addBatteries(BlockLog& log, const Epoch& epoch, Random& random)
{
    constexpr double lifetime = 6 * 3600; // seconds
    constexpr uint16_t notAvailable = 65535;
    const double charge = std::max(0.0, 0.93 - epoch.elapsed / lifetime);
    TQX_BatteryStatus_s record;
    TQX_init_BatteryStatus(&record);
    record.Revision = 1;
    record.PowerSource = charge > 0 ? 2 : 1;
    record.Flags = charge < 0.05 ? 2 : 0;
    for (uint8_t slot = 1; slot <= 2; ++slot) {
        const bool inUse = slot == 1;
        const double left = inUse ? charge : 1;
        TQX_Battery_s& battery = *TQX_append_BatteryStatus_Battery(&record);
        battery.Slot = slot;
        battery.StateOfCharge = static_cast<uint8_t>(steps(left * 100, 1));
        battery.Status = static_cast<uint16_t>(inUse ? 0b101 : 0b1001);
        battery.TimeToEmpty =
            inUse ? static_cast<uint16_t>(steps(left * lifetime / 60, 1)) : notAvailable;
        battery.TimeToFull = notAvailable;
        battery.Current = static_cast<int16_t>(inUse ? -steps(640 + random.normal(15), 1) : 0);
        battery.Voltage = static_cast<uint16_t>(steps(6600 + 1700 * left + random.normal(4), 1));
        battery.Temperature = static_cast<int8_t>(inUse ? 33 : 27);
    }
    log.add(epoch, record, TQX_encode_BatteryStatus);
}

} // namespace tool
