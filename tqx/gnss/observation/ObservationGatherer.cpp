#include "tqx/gnss/observation/ObservationGatherer.h"

#include "tqx/gnss/observation/CompactReader.h"

#include "TQX_codec.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t measExtra = 4000;
constexpr uint16_t pvtCartesian2 = 4006;
constexpr uint16_t pvtGeodetic2 = 4007;
constexpr uint16_t measEpoch2 = 4027;
constexpr uint16_t measFullRange = 4098;
constexpr uint16_t compactRanges = 4109;
constexpr uint16_t compactCn0 = 4110;
constexpr uint16_t compactDoppler = 4111;
constexpr uint16_t compactFlags = 4112;
constexpr uint16_t compactMultipath = 4113;
constexpr uint16_t measEpoch1 = 5889;
constexpr uint16_t shortMeasEpoch = 5890;
constexpr uint16_t pvtCartesian1 = 5903;
constexpr uint16_t pvtGeodetic1 = 5904;
constexpr uint16_t endOfMeas = 5922;
constexpr uint16_t genMeasEpoch = 5944;

constexpr uint16_t wanted[] = {measExtra,     pvtCartesian2,    pvtGeodetic2, measEpoch2,
                               measFullRange, compactRanges,    compactCn0,   compactDoppler,
                               compactFlags,  compactMultipath, measEpoch1,   shortMeasEpoch,
                               pvtCartesian1, pvtGeodetic1,     endOfMeas,    genMeasEpoch};

constexpr double lightSpeed = 299792458;
constexpr double noRealValue = -2e10;
constexpr uint8_t unknownSlot = 62; ///< GLONASS satellites without a known slot
constexpr uint8_t noTimeSystem = 255;

template<typename Record>
const Record& as(const void* record)
{
    return *static_cast<const Record*>(record);
}

/// Lock times of 16 and of 8 bits; the largest number means "none", the one before it "this long or
/// longer".
constexpr double limit16 = 65534;
constexpr double limit8 = 254;

double secondsOf(uint32_t count, uint32_t none, double step = 1)
{
    return count == none ? notMeasured : count * step;
}

double rangeOf(uint32_t msb, uint32_t lsb)
{
    const uint64_t millimetres = uint64_t{msb} << 32U | lsb;
    return millimetres == 0 ? notMeasured : static_cast<double>(millimetres) * 1e-3;
}

/// For a carrier that is sent as its difference from the code.
double phaseOf(const Observation& observation, double difference)
{
    const double frequency = carrierFrequency(observation.signal, observation.channel);
    return frequency > 0 ? observation.range * (frequency / lightSpeed) + difference : notMeasured;
}

} // namespace

std::vector<std::string> ObservationLosses::describe() const
{
    std::vector<std::string> lines;
    if (withoutTime != 0) {
        lines.push_back(fmt::format("{} measurement block{} without a time left out", withoutTime,
                                    withoutTime == 1 ? "" : "s"));
    }
    if (outOfOrder != 0) {
        lines.push_back(fmt::format("{} epoch{} not later than the one before left out", outOfOrder,
                                    outOfOrder == 1 ? "" : "s"));
    }
    if (withoutSlot != 0) {
        lines.push_back(
            fmt::format("{} observation{} of GLONASS satellites with unknown slot left out",
                        withoutSlot, withoutSlot == 1 ? "" : "s"));
    }
    if (withoutSatellite != 0) {
        lines.push_back(fmt::format("{} observation{} of unknown satellites left out",
                                    withoutSatellite, withoutSatellite == 1 ? "" : "s"));
    }
    if (incomplete != 0) {
        lines.push_back(fmt::format("{} compact measurement{} without a reference left out",
                                    incomplete, incomplete == 1 ? "" : "s"));
    }
    for (const auto& [system, signal] : signals) {
        lines.push_back(fmt::format(
            "signal {} of system {} has no observation code and is left out", signal, system));
    }
    return lines;
}

bool ObservationGatherer::wants(uint16_t blockNumber)
{
    return std::binary_search(std::begin(wanted), std::end(wanted), blockNumber);
}

ObservationGatherer::ObservationGatherer(Receiver receiver) : m_receiver(std::move(receiver)) {}

ObservationGatherer::~ObservationGatherer() = default;

void ObservationGatherer::advance(GnssMillis time)
{
    if (m_source != Source::None && time > m_epoch.time)
        close();
}

/// Whether measurements of this source are to be added to the current epoch.
bool ObservationGatherer::begin(const TQX_MainHeader_s& header, Source source)
{
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (!time) {
        ++m_losses.withoutTime;
        return false;
    }
    if (m_source == Source::None || *time != m_epoch.time) {
        close();
        m_epoch.time = *time;
    } else if (source < m_source) {
        return false;
    } else if (source > m_source) {
        clearEpoch();
    }
    m_source = source;
    m_isE6B = false;
    return true;
}

/// A place for an observation; null for signals without a name in files, or already there.
Observation* ObservationGatherer::add(uint8_t svid, uint8_t signal, uint8_t antenna, uint8_t slot)
{
    const auto satellite = satelliteOf(svid);
    if (!satellite) {
        ++(svid == unknownSlot ? m_losses.withoutSlot : m_losses.withoutSatellite);
        return nullptr;
    }
    const auto code = signalCode(satellite->system, signal, m_isE6B);
    if (!code) {
        m_losses.signals.emplace(satellite->system, signal);
        return nullptr;
    }
    uint64_t& seen = m_seen[svid][antenna & 7U];
    const uint64_t bit = uint64_t{1} << (signal & 63U);
    if ((seen & bit) != 0)
        return nullptr;
    seen |= bit;
    m_svids.push_back(svid);
    m_evidence.emplace_back();
    // A copy is faster than an observation made anew, which is filled with zeros first.
    static const Observation nothing;
    m_epoch.observations.push_back(nothing);
    Observation& observation = m_epoch.observations.back();
    observation.satellite = *satellite;
    observation.code = *code;
    observation.signal = signal;
    observation.antenna = antenna;
    observation.channel = static_cast<int8_t>(isFdma(signal) ? slot - 8 : 0);
    return &observation;
}

/// Fields with the same names in the entries of all generations. Signals whose numbers continue in
/// the frequency slot are not FDMA signals.
template<typename Entry>
Observation* ObservationGatherer::addEntry(uint8_t svid, const Entry& entry, double limit,
                                           double lockTime)
{
    Observation* observation = add(svid, entry.SignalType, entry.AntennaID, entry.FreqSlot);
    if (!observation)
        return nullptr;
    if (entry.CN0 != 255)
        observation->cn0 = entry.CN0_dBHz;
    observation->isHalfCycle = entry.HalfCycleAmbiguity != 0;
    observation->isSmoothed = entry.Smoothed != 0;
    observation->lockTime = lockTime;
    m_evidence.back().limit = limit;
    return observation;
}

/// An epoch with the further signals of a satellite below its first.
template<typename Record>
void ObservationGatherer::takeEpoch(const Record& record, bool isE6B)
{
    m_isE6B = isE6B;
    m_epoch.clockJumps = record.CumClkJumps;
    for (uint32_t i = 0; i < record.N1; ++i) {
        const TQX_MeasEpochChannelType1_s& first = record.Type1[i];
        const bool hasRange = first.CodeMSB != 0 || first.CodeLSB != 0;
        const bool hasDoppler = first.Doppler != INT32_MIN;
        const auto complete = [&](Observation& observation, const auto& entry, bool isMeasured,
                                  bool isMoving) {
            if (isMeasured)
                observation.range = entry.CodeRange;
            // Slot 0 means no known frequency, which the phase depends on.
            if (isMeasured && entry.CarrierMSB != INT8_MIN && entry.CarrierFrequency > 0 &&
                (!isFdma(entry.SignalType) || entry.FreqSlot != 0))
                observation.phase = entry.CarrierPhase;
            if (isMoving)
                observation.doppler = entry.DopplerHz;
        };
        if (Observation* observation =
                addEntry(first.SVID, first, limit16, secondsOf(first.LockTime, 65535)))
            complete(*observation, first, hasRange, hasDoppler);
        for (uint32_t k = 0; k < first.N2; ++k) {
            const TQX_MeasEpochChannelType2_s& other = first.Type2[k];
            if (Observation* observation =
                    addEntry(first.SVID, other, limit8, secondsOf(other.LockTime, 255))) {
                complete(*observation, other, hasRange && other.CodeOffsetMSB != -4,
                         hasDoppler && other.DopplerOffsetMSB != -16 && first.CarrierFrequency > 0);
            }
        }
    }
}

void ObservationGatherer::takeFirst(const void* block)
{
    const auto& record = as<TQX_MeasEpoch1_s>(block);
    m_epoch.clockJumps = record.CumClkJumps;
    m_epoch.isSteered = record.Clock_Steering != 0;
    for (uint32_t i = 0; i < record.N; ++i) {
        const TQX_MeasEpochChannel_s& entry = record.MeasEpochChannel[i];
        Observation* observation =
            addEntry(entry.SVID, entry, limit16, secondsOf(entry.LockTime, 65535));
        if (!observation)
            continue;
        observation->range = rangeOf(entry.CodeMSB, entry.CodeLSB);
        if (entry.CarrierMSB != INT8_MIN) {
            observation->phase =
                phaseOf(*observation, (entry.CarrierMSB * 65536 + entry.CarrierLSB) * 1e-3);
        }
        if (entry.Doppler != INT32_MIN)
            observation->doppler = entry.Doppler * 1e-4;
    }
}

void ObservationGatherer::takeShort(const void* block)
{
    const auto& record = as<TQX_ShortMeasEpoch_s>(block);
    m_epoch.isSteered = record.Clock_Steering != 0;
    for (uint32_t i = 0; i < record.N; ++i) {
        const TQX_ShortMeasEpochChannel_s& entry = record.ShortMeasEpochChannel[i];
        constexpr double step = 1e-3;
        Observation* observation = addEntry(entry.SVID, entry, (UINT32_MAX - 1) * step,
                                            secondsOf(entry.LockTime, UINT32_MAX, step));
        if (!observation)
            continue;
        m_evidence.back().step = step;
        if (entry.CodeRange != 0)
            observation->range = entry.CodeRange * 1e-2;
        if (entry.CarrierOffset != INT32_MIN)
            observation->phase = phaseOf(*observation, entry.CarrierOffset * 1e-3);
    }
}

void ObservationGatherer::takeFullRange(const void* block)
{
    const auto& record = as<TQX_MeasFullRange_s>(block);
    for (uint32_t i = 0; i < record.N; ++i) {
        const TQX_MeasFullRangeSub_s& entry = record.MeasFullRange[i];
        Observation* observation =
            addEntry(entry.SVID, entry, limit16, secondsOf(entry.LockTime, 65535));
        if (!observation)
            continue;
        observation->range = rangeOf(entry.CodeMSB, entry.CodeLSB);
        constexpr double step = 1.0 / 512;
        if (entry.CarrierOffset != INT32_MIN)
            observation->phase = phaseOf(*observation, entry.CarrierOffset * step);
        const double frequency = carrierFrequency(observation->signal, observation->channel);
        if (entry.RangeRate != INT32_MIN && frequency > 0)
            observation->doppler = entry.RangeRate * -1e-3 * (frequency / lightSpeed);
    }
}

/// Compact epochs are completed even where another generation of the same epoch is used, because
/// later ones depend on them.
void ObservationGatherer::takeCompact(uint16_t number, const void* block)
{
    const auto& header = as<TQX_MainHeader_s>(block);
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (!m_compact)
        m_compact = std::make_unique<CompactReader>();
    if (number == compactRanges) {
        const auto& record = as<TQX_Meas3Ranges_s>(block);
        if (record.Scrambled != 0)
            return;
        if (begin(header, Source::Compact)) {
            m_epoch.clockJumps = record.Revision >= 1 ? record.CumClkJumps : uint8_t{0};
            m_epoch.isSteered = record.Clock_Steering != 0;
            m_isE6B = record.E6BUsed != 0;
            m_isSmoothed = record.CodeSmoothing != 0;
        }
        if (time)
            m_compact->take(record, *time);
    } else if (!time) {
        return;
    } else if (number == compactCn0) {
        m_compact->take(as<TQX_Meas3CN0HiRes_s>(block), *time);
    } else if (number == compactDoppler) {
        m_compact->take(as<TQX_Meas3Doppler_s>(block), *time);
    } else if (number == compactFlags) {
        m_compact->take(as<TQX_Meas3PP_s>(block), *time);
    } else {
        m_compact->take(as<TQX_Meas3MP_s>(block), *time);
    }
}

/// Adds the observations of the compact epoch that has ended.
void ObservationGatherer::addCompact()
{
    for (const CompactObservation& each : m_compact->finish()) {
        const uint8_t svid = svidOf({systemLetters[each.constellation], each.number});
        Observation* const observation = add(svid, each.signal, 0, each.slot);
        if (!observation)
            continue;
        m_evidence.back() = each.evidence;
        observation->isHalfCycle = each.isHalfCycle;
        observation->isSmoothed = m_isSmoothed;
        observation->doppler = each.doppler;
        observation->cn0 = each.cn0;
        observation->lockTime = each.lockTime;
        observation->multipath = each.multipath;
        const double frequency = carrierFrequency(each.signal, observation->channel);
        if (each.range)
            observation->range = static_cast<double>(*each.range) * 1e-3;
        if (each.carrier && frequency > 0 && (!isFdma(each.signal) || each.slot != 0)) {
            observation->phase =
                static_cast<double>(*each.carrier) * 1e-3 * (frequency / lightSpeed);
        }
    }
    m_losses.incomplete = m_compact->getIncomplete();
}

void ObservationGatherer::takeExtra(const void* block)
{
    const auto& record = as<TQX_MeasExtra_s>(block);
    const auto time = gnssMillis(record.TOW, record.WNc);
    if (!time)
        return;
    advance(*time);
    if (*time != m_extrasTime)
        m_extras.clear();
    m_extrasTime = *time;
    for (uint32_t i = 0; i < record.N; ++i) {
        const TQX_MeasExtraChannelSub_s& entry = record.MeasExtraChannel[i];
        Extra extra = {};
        extra.svid = entry.SVID;
        extra.signal = entry.SignalType;
        extra.antenna = entry.AntennaID;
        extra.lockTime = secondsOf(entry.LockTime, 65535);
        extra.rangeDeviation =
            entry.CodeVar == 65535 ? notMeasured : std::sqrt(entry.CodeVar * 1e-4);
        extra.phaseDeviation =
            entry.CarrierVar == 65535 ? notMeasured : std::sqrt(entry.CarrierVar) * 1e-3;
        extra.multipath =
            entry.MPCorrection == INT16_MIN ? notMeasured : entry.MPCorrection * 0.0009765625;
        extra.smoothing =
            entry.SmoothingCorr == INT16_MIN ? notMeasured : entry.SmoothingCorr * 1e-3;
        if (record.Revision >= 1) {
            extra.losses = entry.CumLossCont;
            extra.cn0Fraction = entry.CN0Fraction * 0.03125;
        }
        m_extras.push_back(extra);
    }
}

/// The clock bias against a system other than GPS is not the offset of an epoch.
void ObservationGatherer::takeBias(const TQX_MainHeader_s& header, double bias, uint8_t system)
{
    const auto time = gnssMillis(header.TOW, header.WNc);
    if (!time)
        return;
    advance(*time);
    if (bias == noRealValue || std::isnan(bias) || (system != 0 && system != noTimeSystem))
        return;
    m_biasTime = *time;
    m_bias = bias * 1e-3;
}

void ObservationGatherer::take(const DecodedBlock& decoded)
{
    const void* const block = decoded.record;
    const TQX_MainHeader_s& header = decoded.getHeader();
    const auto bias = [&](const auto& record) {
        if (record.Error == 0)
            takeBias(header, record.RxClkBias, record.TimeSystem);
    };
    switch (decoded.block.getNumber()) {
    case measEpoch2: {
        if (!begin(header, Source::Second))
            return;
        const auto& record = as<TQX_MeasEpoch2_s>(block);
        m_epoch.isSteered = record.Clock_Steering != 0;
        return takeEpoch(record, record.E6B_Used != 0);
    }
    case genMeasEpoch: {
        if (!begin(header, Source::Generic))
            return;
        const auto& record = as<TQX_GenMeasEpoch_s>(block);
        m_epoch.isSteered = record.Clock_Steering != 0;
        return takeEpoch(record, false);
    }
    case measEpoch1:
        return begin(header, Source::First) ? takeFirst(block) : void();
    case shortMeasEpoch:
        return begin(header, Source::Short) ? takeShort(block) : void();
    case measFullRange:
        return begin(header, Source::FullRange) ? takeFullRange(block) : void();
    case compactRanges:
    case compactCn0:
    case compactDoppler:
    case compactFlags:
    case compactMultipath:
        return takeCompact(decoded.block.getNumber(), block);
    case measExtra:
        return takeExtra(block);
    case pvtCartesian2:
        return bias(as<TQX_PVTCartesian2_s>(block));
    case pvtGeodetic2:
        return bias(as<TQX_PVTGeodetic2_s>(block));
    case pvtCartesian1:
        return bias(as<TQX_PVTCartesian1_s>(block));
    case pvtGeodetic1:
        return bias(as<TQX_PVTGeodetic1_s>(block));
    default:
        return;
    }
}

/// Extras come in the order of the measurements, so the next one is found quickly.
void ObservationGatherer::join(const Extra& extra)
{
    for (size_t step = 1; step <= m_svids.size(); ++step) {
        const size_t i = (m_joined + step) % m_svids.size();
        Observation& observation = m_epoch.observations[i];
        if (m_svids[i] != extra.svid || observation.signal != extra.signal ||
            observation.antenna != extra.antenna)
            continue;
        m_joined = i;
        observation.cn0 += extra.cn0Fraction;
        observation.rangeDeviation = extra.rangeDeviation;
        observation.phaseDeviation = extra.phaseDeviation;
        observation.multipath = extra.multipath;
        observation.smoothing = extra.smoothing;
        LockTracker::Evidence& evidence = m_evidence[i];
        evidence.losses = extra.losses;
        // The same time, in 16 bits where the measurement may have only 8.
        if (!std::isnan(extra.lockTime) && evidence.limit < limit16) {
            observation.lockTime = extra.lockTime;
            evidence.limit = limit16;
        }
        return;
    }
}

void ObservationGatherer::clearEpoch()
{
    for (const uint8_t svid : m_svids)
        m_seen[svid].fill(0);
    m_epoch.observations.clear();
    m_evidence.clear();
    m_svids.clear();
    m_joined = 0;
}

/// Passes on the current epoch, if there is one.
void ObservationGatherer::close()
{
    if (m_source != Source::None && m_last && m_epoch.time <= *m_last) {
        ++m_losses.outOfOrder;
    } else if (m_source != Source::None) {
        if (m_source == Source::Compact)
            addCompact();
        if (m_extrasTime == m_epoch.time) {
            for (const Extra& extra : m_extras)
                join(extra);
        }
        for (size_t i = 0; i < m_evidence.size(); ++i)
            m_tracker.update(m_epoch.observations[i], m_evidence[i], m_epoch.time);
        if (m_biasTime == m_epoch.time)
            m_epoch.clockBias = m_bias;
        m_last = m_epoch.time;
        // The callee may reduce the epoch; what it leaves out is not kept.
        if (!m_receiver(m_epoch)) {
            for (const Observation& observation : m_epoch.observations)
                m_tracker.keep(observation);
        }
    }
    m_source = Source::None;
    clearEpoch();
    m_epoch.clockJumps = 0;
    m_epoch.isSteered = false;
    m_epoch.clockBias = notMeasured;
}

} // namespace tqx
