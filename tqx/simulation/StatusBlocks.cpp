#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/TextMember.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint32_t upTimeAtStart = 600;
constexpr double batteryLife = 6 * 3600; ///< seconds
constexpr unsigned interferenceBit = 15; ///< of the state
constexpr unsigned antennaOpenBit = 8;   ///< of the errors

void addFrontEnd(TQX_ReceiverStatus2_s& record, uint8_t code, double gain, Random& random)
{
    TQX_AGCState_s& state = *TQX_append_ReceiverStatus2_AGCState(&record);
    state.FrontEndID = code;
    state.Gain = static_cast<int8_t>(steps(gain + random.normal(0.4), 1));
    state.SampleVar = static_cast<uint8_t>(steps(100 + random.normal(1.5), 1));
    state.BlankingStat = static_cast<uint8_t>(random.chance(0.1) ? 1 : 0);
}

void addBatteries(BlockLog& log, const Epoch& epoch, double charge, Random& random)
{
    constexpr uint16_t notAvailable = 65535;
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
            inUse ? static_cast<uint16_t>(steps(left * batteryLife / 60, 1)) : notAvailable;
        battery.TimeToFull = notAvailable;
        battery.Current = static_cast<int16_t>(inUse ? -steps(640 + random.normal(15), 1) : 0);
        battery.Voltage = static_cast<uint16_t>(steps(6600 + 1700 * left + random.normal(4), 1));
        battery.Temperature = static_cast<int8_t>(inUse ? 33 : 27);
    }
    log.add(epoch, record, TQX_encode_BatteryStatus);
}

/// The main input takes over when the battery is empty.
void addInputs(BlockLog& log, const Epoch& epoch, double charge, Random& random)
{
    constexpr unsigned mainInput = 1;
    constexpr unsigned mainPresent = 1U << 2U;
    constexpr unsigned automatic = 1U << 5U;
    const auto voltage = static_cast<uint32_t>(steps(12100 + random.normal(30), 10));
    const auto current = static_cast<uint32_t>(charge > 0 ? 3 : steps(410 + random.normal(9), 1));
    TQX_PowerStatus_s record;
    TQX_init_PowerStatus(&record);
    record.Revision = 2;
    record.Inputs = static_cast<uint8_t>(mainPresent | automatic | (charge > 0 ? 0 : mainInput));
    record.MainSupply = voltage | current << 12U;
    log.add(epoch, record, TQX_encode_PowerStatus);
}

/// A band around L1 that pulses disturb.
void addDisturbedBand(BlockLog& log, const Epoch& epoch)
{
    TQX_RFStatus_s record;
    TQX_init_RFStatus(&record);
    TQX_RFBand_s& band = *TQX_append_RFStatus_RFBand(&record);
    band.Frequency = 1575420000;
    band.Bandwidth = 2000000;
    band.Mitigation = 2;
    log.add(epoch, record, TQX_encode_RFStatus);
}

} // namespace

void addReceiverState(BlockLog& log, const Epoch& epoch, Random& random, const FaultPlan& faults)
{
    // Antenna fed, week, time of week and fine time known, solution valid, receiving corrections.
    constexpr uint32_t state = 1U << 0U | 1U << 3U | 1U << 4U | 1U << 5U | 1U << 7U | 1U << 8U;
    const bool isDisturbed = faults.hasInterference(epoch);
    TQX_ReceiverStatus2_s record;
    TQX_init_ReceiverStatus2(&record);
    record.CPULoad =
        static_cast<uint8_t>(std::clamp<int64_t>(steps(31 + random.normal(3), 1), 1, 100));
    record.UpTime = upTimeAtStart + static_cast<uint32_t>(epoch.elapsed);
    record.RxState = state | (isDisturbed ? 1U << interferenceBit : 0);
    record.RxError = faults.isAntennaOpen(epoch) ? 1U << antennaOpenBit : 0;
    record.Temperature = static_cast<uint8_t>(
        steps(44 + 3 * std::sin(2 * pi * epoch.elapsed / 7200) + random.normal(0.2), 1));
    for (const unsigned frontEnd : {0U, 1U, 3U, 4U, 5U, 6U, 11U, 12U}) {
        addFrontEnd(record, static_cast<uint8_t>(frontEnd),
                    36 + frontEnd % 4 - (isDisturbed && frontEnd == 0 ? 11 : 0), random);
    }
    log.add(epoch, record, TQX_encode_ReceiverStatus2);
    if (isDisturbed)
        addDisturbedBand(log, epoch);
}

void addPower(BlockLog& log, const Epoch& epoch, Random& random)
{
    const double charge = std::max(0.0, 0.93 - epoch.elapsed / batteryLife);
    addBatteries(log, epoch, charge, random);
    addInputs(log, epoch, charge, random);
}

void addQuality(BlockLog& log, const Epoch& epoch)
{
    constexpr unsigned signals = 9;
    constexpr unsigned spectrum = 10;
    TQX_QualityInd_s record;
    TQX_init_QualityInd(&record);
    record.Revision = 1;
    record.Indicators = static_cast<uint16_t>(signals | signals << 4U | spectrum << 8U);
    log.add(epoch, record, TQX_encode_QualityInd);
}

void addSetup(BlockLog& log, const Epoch& epoch, const Geodetic& marker)
{
    TQX_ReceiverSetup1_s record;
    TQX_init_ReceiverSetup1(&record);
    setText(record.MarkerName, "SIMULATED SITE");
    setText(record.MarkerNumber, "00000S001");
    setText(record.MarkerType, "GEODETIC");
    setText(record.Observer, "NOBODY");
    setText(record.Agency, "tqx simulate");
    setText(record.ReceiverNumber, "SIM-0001");
    setText(record.ReceiverType, "SIMULATED");
    setText(record.ReceiverVersion, "1.0");
    setText(record.AntennaNumber, "A-0001");
    setText(record.AntennaType, "SIMULATED       NONE");
    record.AntennaDeltaH = 0;
    record.AntennaDeltaE = 0;
    record.AntennaDeltaN = 0;
    record.Revision = 3;
    setText(record.SiteCode, "SIMU");
    record.Latitude = rounded(marker.latitude * 180 / pi, 1e-9);
    record.Longitude = rounded(marker.longitude * 180 / pi, 1e-9);
    record.Height = rounded(marker.height, 1e-4);
    record.AntennaAzimuth = 0;
    record.CableLength = 10;
    setText(record.ProductName, "tqx simulate");
    log.add(epoch, record, TQX_encode_ReceiverSetup1);

    constexpr char text[] = "Made by tqx simulate";
    TQX_Comment1_s comment;
    TQX_init_Comment1(&comment);
    comment.CommentLn = static_cast<uint16_t>(std::strlen(text));
    setText(comment.Comment, text);
    log.add(epoch, comment, TQX_encode_Comment1);
}

} // namespace tqx::simulation
