#include "tqx/simulation/Blocks.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
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

/// Numbers that do not fit into the five bits of the type continue in the frequency slot, which is
/// the frequency number of GLONASS otherwise.
struct SignalCode {
    SignalCode(const Sight& sight, const Signal& signal)
    {
        const Satellite& satellite = *sight.satellite;
        const bool isLong = signal.plan->number > 30;
        type = isLong ? uint8_t{31} : signal.plan->number;
        const unsigned slot = isLong ? signal.plan->number - 32U
                                     : frequencySlot(satellite.getSystem(), satellite.getChannel());
        const unsigned halfCycle = sight.lockTime < 6 ? 1 : 0;
        info = static_cast<uint8_t>(slot << 3U | halfCycle << 2U);
    }

    uint8_t type;
    uint8_t info;
};

/// The carrier is sent as its difference from the code, in cycles.
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
    const SignalCode kind(sight, signal);
    entry.Type = kind.type;
    entry.ObsInfo = kind.info;
    entry.SVID = sight.satellite->getSvid();
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
    const SignalCode kind(sight, signal);
    entry.Type = kind.type;
    entry.ObsInfo = kind.info;
    entry.LockTime = static_cast<uint8_t>(std::min(sight.lockTime, 254.0));
    entry.CN0 = cn0Of(signal);
    entry.OffsetsMSB =
        static_cast<uint8_t>((codeOffset >> 16 & 7) | (dopplerOffset >> 16 & 31) << 3);
    entry.CarrierMSB = static_cast<int8_t>(carrier >> 16);
    entry.CodeOffsetLSB = static_cast<uint16_t>(codeOffset);
    entry.CarrierLSB = static_cast<uint16_t>(carrier);
    entry.DopplerOffsetLSB = static_cast<uint16_t>(dopplerOffset);
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
        for (unsigned i = 1; i < sight.signalCount; ++i)
            fillOther(*TQX_append_MeasEpochChannelType1_Type2(&entry), sight, sight.signals[i]);
        for (unsigned i = 0; i < (sight.hasSecond ? sight.signalCount : 0); ++i) {
            constexpr uint8_t secondAntenna = 1 << 5;
            TQX_MeasEpochChannelType2_s& other = *TQX_append_MeasEpochChannelType1_Type2(&entry);
            fillOther(other, sight, sight.secondSignals[i]);
            other.Type |= secondAntenna;
        }
    }
    log.add(epoch, record, TQX_encode_MeasEpoch2);
    TQX_EndOfMeas_s end;
    TQX_init_EndOfMeas(&end);
    log.add(epoch, end, TQX_encode_EndOfMeas);
}

} // namespace tqx::simulation
