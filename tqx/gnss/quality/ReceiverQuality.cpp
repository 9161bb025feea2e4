#include "tqx/gnss/quality/ReceiverQuality.h"

#include "tqx/gnss/position/FieldNames.h"

#include "TQX_codec.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace tqx::quality
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t dop2 = 4001;
constexpr uint16_t receiverStatus2 = 4014;
constexpr uint16_t rfStatus = 4092;
constexpr uint16_t receiverSetup1 = 5902;
constexpr uint16_t receiverStatus1 = 5913;
constexpr uint16_t wanted[] = {dop2, receiverStatus2, rfStatus, receiverSetup1, receiverStatus1};

constexpr size_t mostChanges = 1000;

/// Text of a fixed width, without trailing blanks.
std::string textOf(const char* text)
{
    std::string result = text;
    result.erase(result.find_last_not_of(' ') + 1);
    return result;
}

} // namespace

bool ReceiverQuality::wants(uint16_t blockNumber)
{
    return std::find(std::begin(wanted), std::end(wanted), blockNumber) != std::end(wanted);
}

void ReceiverQuality::take(uint16_t blockNumber, const void* record, GnssMillis time)
{
    switch (blockNumber) {
    case receiverStatus2: {
        const auto& status = *static_cast<const TQX_ReceiverStatus2_s*>(record);
        takeStatus(status, time);
        if (status.Temperature != 0) {
            m_temperature.add(status.Temperature);
            m_temperatureSeries.add(time, status.Temperature);
        }
        m_knowsInterference = true;
        if (status.Interference != 0)
            m_interference.hold(time, 0);
        takeErrors(status, time);
        return takeGains(record, time);
    }
    case receiverStatus1: {
        const auto& status = *static_cast<const TQX_ReceiverStatus1_s*>(record);
        takeStatus(status, time);
        if (status.AntennaShort != 0 || status.AntennaOpen != 0)
            m_antennaFaults.hold(time, 0, status.AntennaOpen != 0 ? "open" : "short circuit");
        return;
    }
    case rfStatus:
        return takeBands(record, time);
    case receiverSetup1:
        return takeSetUp(record, time);
    case dop2:
        return takeDilution(*static_cast<const TQX_DOP2_s*>(record), time);
    default:
        return;
    }
}

template<typename Record>
void ReceiverQuality::takeStatus(const Record& record, GnssMillis time)
{
    constexpr uint8_t notKnown = 255;
    if (record.CPULoad != notKnown) {
        m_load.add(record.CPULoad);
        m_loadSeries.add(time, record.CPULoad);
    }
    if (m_state.time != 0 && record.UpTime < m_state.upTime && time > m_state.time &&
        m_restarts.size() < mostChanges)
        m_restarts.push_back({time, {}});
    m_state = {record.UpTime, time};
}

template<typename Record>
void ReceiverQuality::takeErrors(const Record& record, GnssMillis time)
{
    if (record.AntennaOpen != 0)
        m_antennaFaults.hold(time, 0, "open");
    if (record.AntennaShort != 0)
        m_antennaFaults.hold(time, 0, "short circuit");
    const std::pair<unsigned, const char*> errors[] = {
        {record.WatchdogReset, "watchdog reset"},
        {record.SoftwareFault, "software fault"},
        {record.CPUOverload, "processor overloaded"},
        {record.MemoryLow, "memory low"},
        {record.TemperatureHigh, "temperature too high"},
        {record.SupplyLow, "supply voltage too low"},
        {record.SupplyHigh, "supply voltage too high"},
        {record.ReferenceFault, "frequency reference"},
        {record.FrontEndFault, "front end"},
        {record.PortCongestion, "port congested"},
        {record.LogFault, "logging"},
        {record.SpoofingSuspected, "signals suspected to be forged"},
    };
    for (const auto& [isSet, name] : errors) {
        if (isSet != 0)
            m_errors.hold(time, 0, name);
    }
}

void ReceiverQuality::takeGains(const void* record, GnssMillis time)
{
    const auto& status = *static_cast<const TQX_ReceiverStatus2_s*>(record);
    for (uint32_t i = 0; i < status.N; ++i) {
        const TQX_AGCState_s& state = status.AGCState[i];
        if (state.Gain != INT8_MIN)
            m_gains[state.FrontEndID].add(time, state.Gain);
    }
}

void ReceiverQuality::takeBands(const void* record, GnssMillis time)
{
    const auto& status = *static_cast<const TQX_RFStatus_s*>(record);
    m_knowsInterference = true;
    for (uint32_t i = 0; i < status.N; ++i) {
        const TQX_RFBand_s& band = status.RFBand[i];
        m_interference.hold(time, band.Bandwidth, fmt::format("{:.2f} MHz", band.Frequency * 1e-6));
    }
}

void ReceiverQuality::takeSetUp(const void* record, GnssMillis time)
{
    const auto& setUp = *static_cast<const TQX_ReceiverSetup1_s*>(record);
    const std::string marker = textOf(setUp.MarkerName);
    const std::string receiver = textOf(setUp.ReceiverType) + " " + textOf(setUp.ReceiverNumber);
    const std::string antenna = textOf(setUp.AntennaType) + " " + textOf(setUp.AntennaNumber);
    std::string all = fmt::format("{}, {}, {}, offset {:.4f} m", marker, receiver, antenna,
                                  static_cast<double>(setUp.AntennaDeltaH));
    if (m_setUp.empty()) {
        m_marker = marker;
        m_receiver = receiver;
        m_antenna = antenna;
    } else if (all != m_setUp && m_setUps.size() < mostChanges) {
        m_setUps.push_back({time, all});
    }
    m_setUp = std::move(all);
}

template<typename Record>
void ReceiverQuality::takeDilution(const Record& record, GnssMillis time)
{
    if (record.Error != 0)
        return;
    const auto add = [time](Moments& moments, ThinnedSeries& series, double value) {
        if (!(value > 0))
            return;
        moments.add(value);
        series.add(time, value);
    };
    add(m_pdop, m_pdopSeries, record.PDOP);
    add(m_hdop, m_hdopSeries, record.HDOP);
    add(m_vdop, m_vdopSeries, record.VDOP);
}

void ReceiverQuality::addFinding(Quality& quality, FindingKind kind, Episodes& episodes,
                                 const std::string& text) const
{
    for (const Episode& episode : episodes.finish()) {
        Finding& finding = quality.findings.emplace_back();
        finding.kind = kind;
        finding.start = episode.start;
        finding.end = episode.end;
        finding.subject = episode.subject;
        finding.text = text + (episode.subject.empty() ? "" : ": " + episode.subject);
    }
    quality.findingCounts[kind] += episodes.getCount();
}

void ReceiverQuality::report(Quality& quality)
{
    quality.marker = m_marker;
    quality.receiver = m_receiver;
    quality.antenna = m_antenna;
    quality.load = m_load.get();
    quality.temperature = m_temperature.get();
    quality.pdop = m_pdop.get();
    quality.hdop = m_hdop.get();
    quality.vdop = m_vdop.get();
    quality.restarts = m_restarts.size();
    if (m_knowsInterference) {
        quality.interferenceSeconds = 0;
        for (const Episode& episode : m_interference.finish())
            quality.interferenceSeconds += static_cast<double>(episode.end - episode.start) * 1e-3;
    }
    addFinding(quality, FindingKind::Interference, m_interference, "interference");
    addFinding(quality, FindingKind::Antenna, m_antennaFaults, "antenna fault");
    addFinding(quality, FindingKind::ReceiverError, m_errors, "receiver error");
    for (const Change& change : m_restarts) {
        quality.findings.push_back(
            {FindingKind::Restart, change.time, change.time, {}, none, "the receiver restarted"});
    }
    quality.findingCounts[FindingKind::Restart] = m_restarts.size();
    for (const Change& change : m_setUps) {
        quality.findings.push_back({FindingKind::SetUpChange, change.time, change.time,
                                    change.subject, none, "another set-up: " + change.subject});
    }
    quality.findingCounts[FindingKind::SetUpChange] = m_setUps.size();

    if (!m_pdopSeries.isEmpty()) {
        quality.plots.push_back(
            {"dop",
             "Dilution of precision",
             "",
             {m_pdopSeries.get("PDOP"), m_hdopSeries.get("HDOP"), m_vdopSeries.get("VDOP")}});
    }
    if (!m_gains.empty()) {
        Plot gains{"agc", "Gain of the front ends", "dB", {}};
        for (const auto& [id, series] : m_gains) {
            const unsigned antenna = id >> 5U;
            std::string name(
                valueName(TQX_recordTypeOf<TQX_AGCState_s>, "FrontEnd Code", id & 31U));
            if (name.empty())
                name = fmt::format("front end {}", id & 31U);
            gains.series.push_back(
                series.get(antenna == 0 ? name : fmt::format("{} (antenna {})", name, antenna)));
        }
        quality.plots.push_back(std::move(gains));
    }
    if (!m_loadSeries.isEmpty())
        quality.plots.push_back({"load", "Processor load", "%", {m_loadSeries.get("load")}});
    if (!m_temperatureSeries.isEmpty()) {
        quality.plots.push_back({"temperature",
                                 "Temperature of the receiver",
                                 "°C",
                                 {m_temperatureSeries.get("temperature")}});
    }
}

} // namespace tqx::quality
