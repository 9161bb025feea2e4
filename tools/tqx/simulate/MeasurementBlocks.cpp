#include "Blocks.h"

#include <algorithm>
#include <cmath>

namespace tool
{

using namespace Kor::MessageApi;

namespace
{

constexpr double codeStep = 0.001; // metres, and cycles of the carrier
constexpr double dopplerStep = 0.0001;
constexpr double cn0Step = 0.25;
constexpr double cn0Offset = 10;

uint8_t cn0Of(const Signal& signal)
{
    return static_cast<uint8_t>(steps(std::max(signal.cn0 - cn0Offset, 0.0), cn0Step));
}

/// The carrier stands as its difference from the code, in cycles.
int64_t carrierOf(const Signal& signal, int64_t codeSteps)
{
    const double code = static_cast<double>(codeSteps) * codeStep;
    return steps(signal.phase - code * signal.frequency / speedOfLight, codeStep);
}

void fillReference(TQX_MeasEpochChannelType1_s& entry, const Sight& sight)
{
    const Signal& signal = sight.signals.front();
    const int64_t code = steps(signal.code, codeStep);
    const int64_t carrier = carrierOf(signal, code);
    entry.RxChannel = sight.channel;
    entry.Type = signal.number;
    entry.SVID = sight.prn;
    entry.Misc = static_cast<uint8_t>(code >> 32);
    entry.CodeLSB = static_cast<uint32_t>(code);
    entry.Doppler = static_cast<int32_t>(steps(signal.doppler, dopplerStep));
    entry.CarrierLSB = static_cast<uint16_t>(carrier);
    entry.CarrierMSB = static_cast<int8_t>(carrier >> 16);
    entry.CN0 = cn0Of(signal);
    entry.LockTime = static_cast<uint16_t>(std::min(sight.lockTime, 65534.0));
}

void fillOther(TQX_MeasEpochChannelType2_s& entry, const Sight& sight, const Signal& signal)
{
    const Signal& reference = sight.signals.front();
    const int64_t referenceCode = steps(reference.code, codeStep);
    const int64_t codeOffset = steps(signal.code, codeStep) - referenceCode;
    const int64_t carrier = carrierOf(signal, referenceCode + codeOffset);
    const double referenceDoppler =
        static_cast<double>(steps(reference.doppler, dopplerStep)) * dopplerStep;
    const int64_t dopplerOffset = steps(
        signal.doppler - referenceDoppler * signal.frequency / reference.frequency, dopplerStep);
    entry.Type = signal.number;
    entry.LockTime = static_cast<uint8_t>(std::min(sight.lockTime, 254.0));
    entry.CN0 = cn0Of(signal);
    entry.OffsetsMSB =
        static_cast<uint8_t>((codeOffset >> 16 & 7) | (dopplerOffset >> 16 & 31) << 3);
    entry.CarrierMSB = static_cast<int8_t>(carrier >> 16);
    entry.CodeOffsetLSB = static_cast<uint16_t>(codeOffset);
    entry.CarrierLSB = static_cast<uint16_t>(carrier);
    entry.DopplerOffsetLSB = static_cast<uint16_t>(dopplerOffset);
}

/// Two bits for each signal that the satellite sends, in the slots of its constellation.
uint16_t statesOf(const Sight& sight, unsigned state)
{
    unsigned states = 0;
    for (const Signal& signal : sight.signals)
        states |= state << 2U * signal.number;
    return static_cast<uint16_t>(states);
}

} // namespace

void addMeasurements(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    TQX_MeasEpoch2_s record;
    TQX_init_MeasEpoch2(&record);
    record.Revision = 1;
    record.CumClkJumps = receiver.getClockJumps();
    for (const Sight& sight : receiver.getSights()) {
        TQX_MeasEpochChannelType1_s& entry = *TQX_append_MeasEpoch2_Type1(&record);
        fillReference(entry, sight);
        for (size_t i = 1; i < sight.signals.size(); ++i)
            fillOther(*TQX_append_MeasEpochChannelType1_Type2(&entry), sight, sight.signals[i]);
    }
    log.add(epoch, record, TQX_encode_MeasEpoch2);
}

void addChannels(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr unsigned rising = 1;
    constexpr unsigned setting = 2;
    constexpr unsigned healthy = 1;
    constexpr unsigned tracking = 3;
    constexpr unsigned used = 2;
    TQX_ChannelStatus_s record;
    TQX_init_ChannelStatus(&record);
    for (const Sight& sight : receiver.getSights()) {
        TQX_ChannelSatInfo_s& satellite = *TQX_append_ChannelStatus_SatInfo(&record);
        const auto azimuth = static_cast<unsigned>(steps(sight.azimuth, 1)) % 360;
        satellite.SVID = sight.prn;
        satellite.Azimuth_RiseSet =
            static_cast<uint16_t>(azimuth | (sight.rising ? rising : setting) << 14U);
        satellite.HealthStatus = statesOf(sight, healthy);
        satellite.Elevation = static_cast<int8_t>(steps(sight.elevation, 1));
        satellite.RxChannel = sight.channel;
        TQX_ChannelStateInfo_s& state = *TQX_append_ChannelSatInfo_StateInfo(&satellite);
        state.TrackingStatus = statesOf(sight, tracking);
        state.PVTStatus = statesOf(sight, used);
    }
    log.add(epoch, record, TQX_encode_ChannelStatus);
}

} // namespace tool
