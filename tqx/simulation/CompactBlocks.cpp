#include "tqx/simulation/CompactBlocks.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr double referenceInterval = 10; // seconds
constexpr int64_t bits16 = 1 << 16;

enum MasterType : uint8_t { LongMaster, ShortMaster, ShortResidue, LongResidue };
enum SlaveType : uint8_t { NoSlave, LongSlave, ShortSlave, SlaveResidue };

/// Satellites that use the less common forms.
constexpr bool usesLongResidue(unsigned number)
{
    return number % 4 == 0;
}
constexpr bool usesShortSlave(unsigned number)
{
    return number % 5 == 0;
}

uint8_t wholeSeconds(double lockTime)
{
    return static_cast<uint8_t>(std::clamp(lockTime, 0.0, 255.0));
}

/// In steps of 64 ms.
uint16_t lockSteps(double lockTime, int64_t most)
{
    return static_cast<uint16_t>(
        std::clamp(static_cast<int64_t>(lockTime / 0.064), int64_t{0}, most));
}

template<typename Value>
Value lowBits(int64_t value, unsigned count)
{
    return static_cast<Value>(value & ((int64_t{1} << count) - 1));
}

} // namespace

CompactBlocks::Measured CompactBlocks::measured(const Sight& sight, const Signal& signal)
{
    const double wavelength = speedOfLight / signal.frequency;
    const auto doppler = static_cast<int32_t>(steps(signal.doppler, 0.001));
    return {
        steps(signal.code, 0.001),
        steps(signal.phase * wavelength, 0.001),
        -doppler * 0.001 * wavelength,
        sight.lockTime,
        sight.lockTime < 6,
        doppler,
        static_cast<unsigned>(std::clamp(steps(signal.cn0, 0.03125), int64_t{0}, int64_t{2015}))};
}

/// A reference epoch comes first, in time, and where the clock jumps.
void CompactBlocks::begin(const Epoch& epoch, const Receiver& receiver)
{
    m_elapsed = epoch.elapsed;
    m_isReference = std::floor(epoch.time / referenceInterval) !=
                        std::floor(m_referenceEpoch.time / referenceInterval) ||
                    receiver.getClockJumps() != m_clockJumps || m_reference < 0;
    m_clockJumps = receiver.getClockJumps();
    if (m_isReference) {
        m_reference = epoch.elapsed;
        m_referenceEpoch = epoch;
    }
}

CompactSignal::Moment CompactBlocks::momentOf(const Measured& value) const
{
    return {m_elapsed, m_reference, value.rate};
}

/// Detects that a signal is tracked anew.
void CompactBlocks::noteLock(Known& known, unsigned place, const Measured& value) const
{
    constexpr double tolerance = 1e-6;
    const double since = m_elapsed - value.lockTime;
    if (std::fabs(since - known.lockSince[place]) > tolerance) {
        known.signals[place].loseLock();
        known.isReferred[place] = false;
    }
    known.lockSince[place] = since;
}

void CompactBlocks::keep(Known& known, unsigned place, const Measured& value) const
{
    known.signals[place].keep({m_elapsed, value.code, value.rate, true, value.carrier()},
                              m_isReference);
    known.isReferred[place] = known.isReferred[place] || m_isReference;
}

/// False when a reader could not complete it.
bool CompactBlocks::fillMasterResidue(Entry& entry, const Known& known, const Measured& value) const
{
    constexpr int64_t shortCode = 1 << 18;
    constexpr int64_t shortCarrier = 1 << 14;
    constexpr int64_t longCode = 1 << 22;
    const CompactSignal& signal = known.signals[0];
    if (!known.isReferred[0])
        return false;
    const CompactSignal::Moment moment = momentOf(value);
    const unsigned halfCycle = value.isHalfCycle ? 1 : 0;
    const int64_t code = residueOf(value.code, shortCode);
    const int64_t carrier = residueOf(value.carrier(), shortCarrier);
    if (!usesLongResidue(entry.SVNumber) &&
        signal.completeCode(moment, code, shortCode) == value.code &&
        signal.completeCarrier(carrier, shortCarrier) == value.carrier()) {
        entry.MasterType = ShortResidue;
        entry.M3MasterDeltaS.BF1 = static_cast<uint32_t>(code | carrier << 18);
        entry.M3MasterDeltaS.ObsInfo = static_cast<uint16_t>(halfCycle);
        entry.M3MasterDeltaS.LockTime = lockSteps(value.lockTime, 65535);
        return true;
    }
    const int64_t rest = residueOf(value.code, longCode);
    if (signal.completeCode(moment, rest, longCode) != value.code ||
        std::abs(value.carrier()) >= 127 * bits16)
        return false;
    entry.MasterType = LongResidue;
    entry.M3MasterDeltaL.BF1 = static_cast<uint32_t>(rest | halfCycle << 22U);
    entry.M3MasterDeltaL.CarrierLSB = lowBits<uint16_t>(value.carrier(), 16);
    entry.M3MasterDeltaL.CarrierMSB = static_cast<int8_t>(value.carrier() >> 16);
    entry.M3MasterDeltaL.LockTime = wholeSeconds(value.lockTime);
    return true;
}

void CompactBlocks::fillMasterInFull(Entry& entry, const Measured& value) const
{
    constexpr int64_t largestShort = 32000; // carrier minus code, modulo 65.536 m
    const unsigned halfCycle = value.isHalfCycle ? 1 : 0;
    const auto codeMsb = static_cast<uint32_t>(value.code >> 32);
    if (std::abs(value.carrier()) < largestShort) {
        entry.MasterType = ShortMaster;
        entry.M3MasterShort.CodeLSB = static_cast<uint32_t>(value.code);
        entry.M3MasterShort.CarrierResidue =
            static_cast<uint16_t>(residueOf(value.carrier(), bits16));
        entry.M3MasterShort.BF1 = static_cast<uint8_t>(codeMsb | halfCycle << 4U);
        entry.M3MasterShort.LockTime = wholeSeconds(value.lockTime);
        return;
    }
    entry.MasterType = LongMaster;
    entry.M3MasterLong.BF1 =
        codeMsb | lowBits<uint32_t>(value.carrier() >> 16, 11) << 4U | halfCycle << 15U;
    entry.M3MasterLong.CodeLSB = static_cast<uint32_t>(value.code);
    entry.M3MasterLong.CarrierLSB = lowBits<uint16_t>(value.carrier(), 16);
    entry.M3MasterLong.CumLossCont = 0;
    entry.M3MasterLong.LockTime = wholeSeconds(value.lockTime);
}

void CompactBlocks::fillMaster(Entry& entry, Known& known, const Measured& value)
{
    noteLock(known, 0, value);
    if (m_isReference || !fillMasterResidue(entry, known, value))
        fillMasterInFull(entry, value);
    keep(known, 0, value);
}

/// The code is sent in steps of a centimetre; the value becomes the one that is sent.
bool CompactBlocks::fillSlaveResidue(Entry& entry, const Known& known, const Measured& master,
                                     Measured& value) const
{
    constexpr int64_t centimetre = 10;
    const CompactSignal::Sample* const before = known.signals[0].referenceAt(m_reference);
    const CompactSignal::Sample* const slaveBefore = known.signals[1].referenceAt(m_reference);
    if (usesShortSlave(entry.SVNumber) || !known.isReferred[0] || !known.isReferred[1] || !before ||
        !slaveBefore)
        return false;
    const int64_t moved = slaveBefore->code + master.code - before->code;
    const int64_t change = steps(static_cast<double>(value.code - moved), centimetre);
    Measured sent = value;
    sent.code = moved + change * centimetre;
    const int64_t carrier = residueOf(sent.carrier(), bits16);
    if (std::abs(change) > 127 ||
        known.signals[1].completeCarrier(carrier, bits16) != sent.carrier())
        return false;
    value = sent;
    entry.SlaveType = SlaveResidue;
    entry.M3SlaveDelta.CarrierResidue = static_cast<uint16_t>(carrier);
    entry.M3SlaveDelta.CodeChange = static_cast<int8_t>(change);
    entry.M3SlaveDelta.ObsInfo = value.isHalfCycle ? 1 : 0;
    return true;
}

void CompactBlocks::fillSlaveInFull(Entry& entry, const Measured& master,
                                    const Measured& value) const
{
    constexpr int64_t shortOffset = 1 << 17;
    const unsigned halfCycle = value.isHalfCycle ? 1 : 0;
    const int64_t offset = value.code - master.code;
    if (std::abs(offset) < shortOffset / 2 - 1000 && std::abs(value.carrier()) < 7 * bits16) {
        entry.SlaveType = ShortSlave;
        entry.M3SlaveShort.BF1 = static_cast<uint32_t>(residueOf(offset, shortOffset)) |
                                 static_cast<uint32_t>(lockSteps(value.lockTime, 32767)) << 17U;
        entry.M3SlaveShort.CarrierLSB = lowBits<uint16_t>(value.carrier(), 16);
        entry.M3SlaveShort.ObsInfo =
            static_cast<uint16_t>(halfCycle | lowBits<unsigned>(value.carrier() >> 16, 4) << 1U);
        return;
    }
    entry.SlaveType = LongSlave;
    entry.M3SlaveLong.BF1 = lowBits<uint32_t>(offset, 23) | halfCycle << 23U;
    entry.M3SlaveLong.CarrierLSB = lowBits<uint16_t>(value.carrier(), 16);
    entry.M3SlaveLong.CarrierMSB = static_cast<int8_t>(value.carrier() >> 16);
    entry.M3SlaveLong.LockTime = wholeSeconds(value.lockTime);
}

void CompactBlocks::fillSlave(Entry& entry, Known& known, const Measured& master, Measured value)
{
    noteLock(known, 1, value);
    if (m_isReference || !fillSlaveResidue(entry, known, master, value))
        fillSlaveInFull(entry, master, value);
    keep(known, 1, value);
}

void CompactBlocks::add(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr uint8_t reference = 1 << 4;
    begin(epoch, receiver);
    TQX_Meas3Ranges_s ranges;
    TQX_Meas3CN0HiRes_s fractions;
    TQX_Meas3Doppler_s dopplers;
    TQX_Meas3PP_s flags;
    TQX_init_Meas3Ranges(&ranges);
    TQX_init_Meas3CN0HiRes(&fractions);
    TQX_init_Meas3Doppler(&dopplers);
    TQX_init_Meas3PP(&flags);
    ranges.Revision = 1;
    ranges.CommonFlags = m_isReference ? reference : uint8_t{0};
    ranges.CumClkJumps = m_clockJumps;
    ranges.RefWN = m_referenceEpoch.week;
    ranges.RefTOW = m_referenceEpoch.towMillis;
    ranges.SignalInfo = 0;
    std::fill(std::begin(ranges.MasterSignal), std::end(ranges.MasterSignal), uint8_t{255});
    uint8_t count = 0;
    const auto extend = [&](const Measured& value, const Sight& sight, unsigned signal) {
        fractions.CN0HighRes[count] = static_cast<uint8_t>(value.cn0 % 16);
        dopplers.Doppler[count] = value.doppler;
        flags.PPFlags[count] = sight.used ? 1 : 0;
        ranges.SignalInfo |= signal < 32 ? 1U << signal : 0;
        ++count;
    };
    for (const Sight& sight : receiver.getSights()) {
        const Satellite& satellite = *sight.satellite;
        Known& known = m_known[satellite.getSvid()];
        Entry& entry = *TQX_append_Meas3Ranges_M3SatData(&ranges);
        entry.Constellation = static_cast<uint8_t>(satellite.getSystem());
        entry.SVNumber = static_cast<uint8_t>(satellite.getNumber());
        entry.SlaveType = NoSlave;
        entry.SlaveCN0 = 127;
        entry.SlaveSignal = 255;
        entry.FreqSlot = frequencySlot(satellite.getSystem(), satellite.getChannel());
        entry.Elevation = static_cast<int8_t>(steps(sight.elevation(), 1));
        entry.Tracking = 0;
        const Measured master = measured(sight, sight.signals[0]);
        ranges.MasterSignal[entry.Constellation] = sight.signals[0].plan->number;
        entry.MasterCN0 = static_cast<uint8_t>(master.cn0 / 16);
        fillMaster(entry, known, master);
        extend(master, sight, sight.signals[0].plan->number);
        if (sight.signalCount > 1) {
            const Measured slave = measured(sight, sight.signals[1]);
            entry.SlaveSignal = sight.signals[1].plan->number;
            entry.SlaveCN0 = static_cast<uint8_t>(slave.cn0 / 16);
            fillSlave(entry, known, master, slave);
            extend(slave, sight, entry.SlaveSignal);
        }
        entry.SatHeader = entry.Constellation | static_cast<uint32_t>(entry.SVNumber) << 3U |
                          static_cast<uint32_t>(entry.MasterType) << 9U |
                          static_cast<uint32_t>(entry.SlaveType) << 11U |
                          static_cast<uint32_t>(entry.MasterCN0) << 13U |
                          static_cast<uint32_t>(entry.SlaveCN0) << 20U;
    }
    fractions.N = dopplers.N = flags.N = count;
    log.add(epoch, ranges, TQX_encode_Meas3Ranges);
    log.add(epoch, fractions, TQX_encode_Meas3CN0HiRes);
    log.add(epoch, dopplers, TQX_encode_Meas3Doppler);
    log.add(epoch, flags, TQX_encode_Meas3PP);
}

} // namespace tqx::simulation
