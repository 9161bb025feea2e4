#include "tqx/gnss/observation/CompactReader.h"

#include "tqx/gnss/observation/SignalCode.h"

#include <cmath>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr double lightSpeed = 299792458.0;
constexpr uint8_t noCn0 = 127;
constexpr uint8_t noSignal = 255;

double secondsOf(GnssMillis time)
{
    return static_cast<double>(time) * 1e-3;
}

/// Milliseconds from one cumulative count modulo 256 to another.
int64_t jumpBetween(uint8_t from, uint8_t to)
{
    return static_cast<int8_t>(static_cast<uint8_t>(to - from));
}

double wavelengthOf(const CompactObservation& observation)
{
    const double frequency =
        carrierFrequency(observation.signal, static_cast<int>(observation.slot) - 8);
    return frequency > 0 ? lightSpeed / frequency : 0;
}

template<typename Part>
int64_t parts(const Part& part)
{
    return int64_t{part.CarrierMSB} * 65536 + part.CarrierLSB;
}

} // namespace

void CompactReader::addMaster(const TQX_M3SatData_s& satellite, Entry entry)
{
    constexpr double longStep = 0.064;
    CompactObservation& observation = entry.observation;
    LockTracker::Evidence& evidence = observation.evidence;
    const auto setLock = [&](double steps, double step, double limit) {
        observation.lockTime = steps * step;
        evidence.step = step;
        evidence.limit = limit * step;
    };
    const auto setCode = [&entry](uint8_t msb, uint32_t lsb) {
        entry.code.value = int64_t{msb} << 32 | lsb;
        entry.code.isMissing = entry.code.value == 0;
    };
    switch (satellite.MasterType) {
    case 0: {
        const TQX_M3MasterLong_s& part = satellite.M3MasterLong;
        setCode(part.CodeMSB, part.CodeLSB);
        entry.carrier.value = parts(part);
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
        evidence.losses = part.CumLossCont;
        setLock(part.LockTime, 1, 255);
        break;
    }
    case 1: {
        const TQX_M3MasterShort_s& part = satellite.M3MasterShort;
        setCode(part.CodeMSB, part.CodeLSB);
        entry.carrier = {part.CarrierResidue, 1 << 16, false};
        entry.isShort = true;
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
        setLock(part.LockTime, 1, 255);
        break;
    }
    case 2: {
        const TQX_M3MasterDeltaS_s& part = satellite.M3MasterDeltaS;
        entry.code = {part.CodeResidue, 1 << 18, false};
        entry.carrier = {part.CarrierResidue, 1 << 14, false};
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
        setLock(part.LockTime, longStep, 65535);
        break;
    }
    default: {
        const TQX_M3MasterDeltaL_s& part = satellite.M3MasterDeltaL;
        entry.code = {part.CodeResidue, 1 << 22, false};
        entry.carrier = {parts(part), 0, part.CarrierMSB == INT8_MIN};
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
        setLock(part.LockTime, 1, 255);
    }
    }
    m_entries.push_back(entry);
}

void CompactReader::addSlave(const TQX_M3SatData_s& satellite, Entry entry)
{
    constexpr double longStep = 0.064;
    CompactObservation& observation = entry.observation;
    entry.isMaster = false;
    observation.signal = satellite.SlaveSignal;
    observation.cn0 = satellite.SlaveCN0 == noCn0 ? notMeasured : satellite.SlaveCN0 * 0.5;
    switch (satellite.SlaveType) {
    case 1: {
        const TQX_M3SlaveLong_s& part = satellite.M3SlaveLong;
        entry.code.value = int64_t{part.CodeOffsetMSB} * 4096 + part.CodeOffsetLSB;
        entry.carrier = {parts(part), 0, part.CarrierMSB == INT8_MIN};
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
        observation.lockTime = part.LockTime;
        observation.evidence.limit = 255;
        break;
    }
    case 2: {
        const TQX_M3SlaveShort_s& part = satellite.M3SlaveShort;
        entry.code = {part.CodeResidue, 1 << 17, false};
        entry.carrier.value = parts(part);
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
        observation.lockTime = part.LockTime * longStep;
        observation.evidence.step = longStep;
        observation.evidence.limit = 32767 * longStep;
        break;
    }
    default: {
        const TQX_M3SlaveDelta_s& part = satellite.M3SlaveDelta;
        entry.code = {int64_t{part.CodeChange} * 10, 0, part.CodeChange == INT8_MIN};
        entry.isChange = true;
        entry.carrier = {part.CarrierResidue, 1 << 16, false};
        observation.isHalfCycle = part.HalfCycleAmbiguity != 0;
    }
    }
    m_entries.push_back(entry);
}

void CompactReader::take(const TQX_Meas3Ranges_s& record, GnssMillis time)
{
    finish();
    m_isOpen = true;
    m_time = time;
    m_isReference = record.ReferenceEpoch != 0;
    const auto reference = gnssMillis(record.RefTOW, record.RefWN);
    m_reference = secondsOf(m_isReference ? time : reference.value_or(0));
    m_jumps = record.Revision >= 1 ? record.CumClkJumps : uint8_t{0};
    for (uint32_t i = 0; i < record.N; ++i) {
        const TQX_M3SatData_s& satellite = record.M3SatData[i];
        Entry entry = {};
        entry.observation.constellation = satellite.Constellation;
        entry.observation.number = satellite.SVNumber;
        entry.observation.slot = satellite.FreqSlot;
        entry.observation.signal = record.MasterSignal[satellite.Constellation];
        entry.observation.cn0 =
            satellite.MasterCN0 == noCn0 ? notMeasured : satellite.MasterCN0 * 0.5;
        addMaster(satellite, entry);
        if (satellite.SlaveType != 0)
            addSlave(satellite, entry);
    }
}

void CompactReader::take(const TQX_Meas3CN0HiRes_s& record, GnssMillis time)
{
    for (size_t i = 0; m_isOpen && time == m_time && i < m_entries.size() && i < record.N; ++i)
        m_entries[i].observation.cn0 += record.CN0Fraction[i] * 0.03125;
}

void CompactReader::take(const TQX_Meas3Doppler_s& record, GnssMillis time)
{
    for (size_t i = 0; m_isOpen && time == m_time && i < m_entries.size() && i < record.N; ++i) {
        if (record.Doppler[i] != INT32_MIN)
            m_entries[i].observation.doppler = record.Doppler[i] * 1e-3;
    }
}

void CompactReader::take(const TQX_Meas3PP_s& record, GnssMillis time)
{
    for (size_t i = 0; m_isOpen && time == m_time && i < m_entries.size() && i < record.N; ++i)
        m_entries[i].observation.evidence.isSlip = record.CycleSlip[i] != 0;
}

void CompactReader::take(const TQX_Meas3MP_s& record, GnssMillis time)
{
    for (size_t i = 0; m_isOpen && time == m_time && i < m_entries.size() && i < record.N; ++i) {
        if (record.MPCorrection[i] != INT16_MIN)
            m_entries[i].observation.multipath = record.MPCorrection[i] * 1e-3;
    }
}

CompactReader::Known& CompactReader::knownOf(const Entry& entry)
{
    const CompactObservation& observation = entry.observation;
    return m_known[{observation.constellation, observation.number, observation.signal}];
}

/// The code of a slave is completed from that of its master in the same epoch: they are within
/// about ten metres.
std::optional<int64_t> CompactReader::codeOf(const Entry& entry, const Entry* master,
                                             const Known& known,
                                             const CompactSignal::Moment& moment) const
{
    if (entry.code.isMissing)
        return std::nullopt;
    if (entry.isMaster) {
        return entry.code.modulus == 0
                   ? entry.code.value
                   : known.signal.completeCode(moment, entry.code.value, entry.code.modulus);
    }
    if (!master || !master->observation.range)
        return std::nullopt;
    const int64_t masterCode = *master->observation.range;
    if (!entry.isChange) {
        return masterCode + (entry.code.modulus == 0
                                 ? entry.code.value
                                 : nearestTo(0, entry.code.value, entry.code.modulus));
    }
    const auto masterKnown = m_known.find({master->observation.constellation,
                                           master->observation.number, master->observation.signal});
    const CompactSignal::Sample* const before = known.signal.referenceAt(m_reference);
    const CompactSignal::Sample* const masterBefore =
        masterKnown == m_known.end() ? nullptr
                                     : masterKnown->second.signal.referenceAt(m_reference);
    if (!before || !masterBefore)
        return std::nullopt;
    return before->code + masterCode - masterBefore->code + entry.code.value;
}

void CompactReader::complete(Entry& entry, const Entry* master)
{
    CompactObservation& observation = entry.observation;
    Known& known = knownOf(entry);
    const double wavelength = wavelengthOf(observation);
    const double time = secondsOf(m_time);
    CompactSignal::Moment moment = {time, m_reference, {}};
    if (!std::isnan(observation.doppler) && wavelength > 0)
        moment.rate = -observation.doppler * wavelength;
    moment.jump = jumpBetween(known.jumpsAtReference, m_jumps);
    moment.jumpBefore = jumpBetween(known.jumps, m_jumps);
    // A lock younger than the last epoch is a new one. It may be counted in whole steps.
    const double elapsed = secondsOf(m_time - known.time);
    if (observation.evidence.isSlip || (observation.lockTime < observation.evidence.limit &&
                                        observation.lockTime + observation.evidence.step < elapsed))
        known.signal.loseLock();
    observation.range = codeOf(entry, master, known, moment);
    std::optional<int64_t> carrier;
    if (observation.range && !entry.carrier.isMissing) {
        carrier = entry.carrier.modulus == 0
                      ? entry.carrier.value
                      : known.signal.completeCarrier(entry.carrier.value, entry.carrier.modulus);
        if (!carrier && entry.isShort)
            carrier = nearestTo(0, entry.carrier.value, entry.carrier.modulus);
    }
    if ((!observation.range && !entry.code.isMissing) ||
        (observation.range && !carrier && !entry.carrier.isMissing))
        ++m_incomplete;
    if (!observation.range)
        return;
    if (carrier)
        observation.carrier = *observation.range + *carrier;
    known.signal.keep(
        {time, *observation.range, moment.rate.value_or(0), moment.rate.has_value(), carrier},
        m_isReference);
    known.time = m_time;
    known.jumps = m_jumps;
    if (m_isReference)
        known.jumpsAtReference = m_jumps;
}

const std::vector<CompactObservation>& CompactReader::finish()
{
    m_observations.clear();
    const Entry* master = nullptr;
    for (Entry& entry : m_entries) {
        if (entry.isMaster)
            master = &entry;
        if (entry.observation.signal == noSignal)
            continue;
        complete(entry, entry.isMaster ? nullptr : master);
        m_observations.push_back(entry.observation);
    }
    m_entries.clear();
    m_isOpen = false;
    return m_observations;
}

} // namespace tqx
