#include "Generations.h"

#include "tqx/gnss/observation/ObservationGatherer.h"
#include "tqx/log/record/RecordDecoder.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/stream/BlockStream.h"

#include "TQX_codec.h"

#include <algorithm>
#include <cmath>

namespace generations
{

using namespace Kor::MessageApi;
using tqx::Observation;
using tqx::ObservationEpoch;

namespace
{

constexpr double lightSpeed = 299792458;

template<typename Record>
std::string encoded(Record& record, const ObservationEpoch& epoch,
                    int (*encode)(unsigned char*, unsigned short, Record*))
{
    record.TOW = static_cast<uint32_t>(epoch.time % tqx::millisPerWeek);
    record.WNc = static_cast<uint16_t>(epoch.time / tqx::millisPerWeek);
    std::string block(65535, '\0');
    const int bits = encode(reinterpret_cast<unsigned char*>(block.data()), 65535, &record);
    block.resize(bits < 0 ? 0 : static_cast<size_t>(bits) / 8);
    return block;
}

/// What all entries have alike: the signal, the antenna, C/N0 and flags.
template<typename Entry>
void fillKind(Entry& entry, const Observation& observation)
{
    const unsigned signal = observation.signal;
    const bool isLong = signal > 30;
    entry.Type = static_cast<uint8_t>((isLong ? 31U : signal) | observation.antenna << 5U);
    const bool isFdma = signal >= 8 && signal <= 11;
    const unsigned slot =
        isLong ? signal - 32 : static_cast<unsigned>(isFdma ? observation.channel + 8 : 0);
    entry.ObsInfo = static_cast<uint8_t>(slot << 3U | (observation.isHalfCycle ? 4U : 0U) |
                                         (observation.isSmoothed ? 1U : 0U));
    // The P(Y) codes of GPS have no offset.
    const double offset = signal == 1 || signal == 2 ? 0 : 10;
    entry.CN0 = static_cast<uint8_t>(std::lround((observation.cn0 - offset) * 4));
}

int64_t millimetresOf(double value)
{
    return std::llround(value * 1000);
}

/// The carrier less the code, in cycles.
double carrierOffset(const Observation& observation, double range)
{
    return observation.phase -
           range * tqx::carrierFrequency(observation.signal, observation.channel) / lightSpeed;
}

template<typename Entry>
void fillCodeAndCarrier(Entry& entry, const Observation& observation)
{
    const int64_t code = millimetresOf(observation.range);
    entry.CodeLSB = static_cast<uint32_t>(code);
    entry.CarrierLSB = 0;
    entry.CarrierMSB = INT8_MIN; // not available
    if (!std::isnan(observation.phase)) {
        const auto carrier =
            std::llround(carrierOffset(observation, static_cast<double>(code) * 1e-3) * 1000);
        entry.CarrierLSB = static_cast<uint16_t>(carrier & 0xffff);
        entry.CarrierMSB = static_cast<int8_t>(carrier >> 16);
    }
    entry.Doppler = static_cast<int32_t>(std::lround(observation.doppler * 1e4));
    entry.LockTime = static_cast<uint16_t>(observation.lockTime);
}

uint8_t highCode(const Observation& observation)
{
    return static_cast<uint8_t>(millimetresOf(observation.range) >> 32U);
}

} // namespace

std::vector<ObservationEpoch> gather(const std::string& log)
{
    std::vector<ObservationEpoch> epochs;
    tqx::ObservationGatherer gatherer([&](ObservationEpoch& epoch) {
        epochs.push_back(epoch);
        return true;
    });
    tqx::MemorySource source(reinterpret_cast<const uint8_t*>(log.data()), log.size(), "log");
    tqx::BlockStream stream(source);
    tqx::RecordDecoder decoder;
    for (tqx::Block block = {}; stream.next(block);) {
        if (tqx::ObservationGatherer::wants(block.getNumber()) && decoder.decode(block) > 0)
            gatherer.take(decoder.getDecoded());
    }
    gatherer.finish();
    return epochs;
}

std::string firstBlock(const ObservationEpoch& epoch)
{
    TQX_MeasEpoch1_s record;
    TQX_init_MeasEpoch1(&record);
    record.Revision = 1;
    record.CumClkJumps = epoch.clockJumps;
    for (const Observation& observation : epoch.observations) {
        TQX_MeasEpochChannel_s& entry = *TQX_append_MeasEpoch1_MeasEpochChannel(&record);
        entry.SVID = tqx::svidOf(observation.satellite);
        fillKind(entry, observation);
        fillCodeAndCarrier(entry, observation);
        entry.CodeMSB = highCode(observation);
    }
    return encoded(record, epoch, TQX_encode_MeasEpoch1);
}

std::string shortBlock(const ObservationEpoch& epoch)
{
    TQX_ShortMeasEpoch_s record;
    TQX_init_ShortMeasEpoch(&record);
    for (const Observation& observation : epoch.observations) {
        TQX_ShortMeasEpochChannel_s& entry =
            *TQX_append_ShortMeasEpoch_ShortMeasEpochChannel(&record);
        entry.SVID = tqx::svidOf(observation.satellite);
        fillKind(entry, observation);
        entry.CodeRange = static_cast<uint32_t>(std::llround(observation.range * 100));
        entry.CarrierOffset = static_cast<int32_t>(
            std::lround(carrierOffset(observation, entry.CodeRange * 1e-2) * 1000));
        entry.LockTime = static_cast<uint32_t>(observation.lockTime * 1000);
    }
    return encoded(record, epoch, TQX_encode_ShortMeasEpoch);
}

std::string fullRangeBlock(const ObservationEpoch& epoch)
{
    TQX_MeasFullRange_s record;
    TQX_init_MeasFullRange(&record);
    for (const Observation& observation : epoch.observations) {
        TQX_MeasFullRangeSub_s& entry = *TQX_append_MeasFullRange_MeasFullRange(&record);
        entry.SVID = tqx::svidOf(observation.satellite);
        fillKind(entry, observation);
        const int64_t code = millimetresOf(observation.range);
        entry.CodeMSB = static_cast<uint16_t>(code >> 32);
        entry.CodeLSB = static_cast<uint32_t>(code);
        entry.CarrierOffset = static_cast<int32_t>(
            std::lround(carrierOffset(observation, static_cast<double>(code) * 1e-3) * 512));
        const double frequency = tqx::carrierFrequency(observation.signal, observation.channel);
        entry.RangeRate =
            static_cast<int32_t>(std::lround(observation.doppler * -1000 * lightSpeed / frequency));
        entry.LockTime = static_cast<uint16_t>(observation.lockTime);
    }
    return encoded(record, epoch, TQX_encode_MeasFullRange);
}

std::string genericBlock(const ObservationEpoch& epoch)
{
    TQX_GenMeasEpoch_s record;
    TQX_init_GenMeasEpoch(&record);
    record.CumClkJumps = epoch.clockJumps;
    for (const Observation& observation : epoch.observations) {
        TQX_MeasEpochChannelType1_s& entry = *TQX_append_GenMeasEpoch_Type1(&record);
        entry.SVID = tqx::svidOf(observation.satellite);
        fillKind(entry, observation);
        fillCodeAndCarrier(entry, observation);
        entry.Misc = highCode(observation);
    }
    return encoded(record, epoch, TQX_encode_GenMeasEpoch);
}

std::string extraBlock(const ObservationEpoch& epoch, uint8_t losses)
{
    TQX_MeasExtra_s record;
    TQX_init_MeasExtra(&record);
    record.Revision = 3;
    for (const Observation& observation : epoch.observations) {
        TQX_MeasExtraChannelSub_s& entry = *TQX_append_MeasExtra_MeasExtraChannel(&record);
        entry.SVID = tqx::svidOf(observation.satellite);
        const bool isLong = observation.signal > 30;
        entry.Type = static_cast<uint8_t>(isLong ? 31 : observation.signal);
        entry.ObsInfo = static_cast<uint16_t>(7U | (isLong ? observation.signal - 32U : 0U) << 3U);
        entry.MPCorrection = -256;
        entry.SmoothingCorr = 50;
        entry.CodeVar = 100;
        entry.CarrierVar = 16;
        entry.LockTime = static_cast<uint16_t>(observation.lockTime);
        entry.CumLossCont = losses;
    }
    return encoded(record, epoch, TQX_encode_MeasExtra);
}

} // namespace generations
