#pragma once

#include "tqx/gnss/observation/Observation.h"
#include "tqx/gnss/rinex/SetUp.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx_gnss_export.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tqx
{

/// The kinds of values of an observation, in the order in which files list them.
enum class ValueKind : uint8_t { Range, Phase, Doppler, Strength };
constexpr unsigned valueKinds = 4;
constexpr char valueLetters[] = "CLDS";

inline double valueOf(const Observation& observation, ValueKind kind)
{
    switch (kind) {
    case ValueKind::Range:
        return observation.range;
    case ValueKind::Phase:
        return observation.phase;
    case ValueKind::Doppler:
        return observation.doppler;
    default:
        return observation.cn0;
    }
}

/// Leap seconds as the header gives them.
struct LeapSecondsInfo {
    int current = 0;
    bool hasFuture = false; ///< whether the rest is known
    int future = 0;
    unsigned week = 0; ///< GPS week at whose day the future ones become effective
    unsigned day = 0;  ///< from 1
};

/// What must be known about the observations of one antenna before the first is written.
struct TQX_GNSS_API AntennaSurvey {
    /// How often a value occurred, by system, signal and kind.
    using Counts = std::array<uint32_t, valueKinds>;

    uint64_t epochs = 0;
    GnssMillis first = 0;
    GnssMillis last = 0;
    std::array<std::map<SignalCode, Counts>, systemCount> signals;
    std::map<SatelliteId, std::map<SignalCode, Counts>> satellites;
    std::map<uint8_t, int8_t> channels;       ///< frequency numbers by slot of GLONASS
    std::map<GnssMillis, uint64_t> intervals; ///< how often each time difference occurred

    /// The most frequent difference of times in milliseconds, 0 with fewer than two epochs.
    GnssMillis getInterval() const;
};

/// The first pass over a log: gathers what headers need to know about all of it.
class TQX_GNSS_API LogSurvey
{
public:
    /// Whether blocks of this number have anything for headers besides observations.
    static bool wants(uint16_t blockNumber);

    /// Adds a decoded, wanted block.
    void take(const DecodedBlock& decoded);

    /// Adds an epoch that will be written.
    void take(const ObservationEpoch& epoch);

    /// Ends the log; the counts of the antennas are complete.
    void finish();

    /// Antennas with observations, by their number in blocks.
    const std::map<uint8_t, AntennaSurvey>& getAntennas() const { return m_antennas; }

    /// The installation at the first epoch; nothing when the log does not say.
    const std::optional<SetUp>& getSetUp() const { return m_setUp; }

    /// A place for APPROX POSITION XYZ: of the marker as it was installed, else the first position.
    struct Place {
        double x;
        double y;
        double z;
    };
    const std::optional<Place>& getPlace() const { return m_place; }

    /// Leap seconds according to the satellites or the receiver; nothing when neither reports them.
    const std::optional<LeapSecondsInfo>& getLeapSeconds() const { return m_leapSeconds; }

    /// Channels of GLONASS satellites according to their ephemerides and almanacs, by slot.
    const std::map<uint8_t, int8_t>& getChannels() const { return m_channels; }

private:
    /// Counts of the signals of a satellite, by band and attribute.
    using SatelliteCounts = std::array<AntennaSurvey::Counts, 260>;

    void takePlace(uint8_t error, double x, double y, double z);
    void takeChannel(uint8_t svid, uint8_t slot);

    std::map<uint8_t, AntennaSurvey> m_antennas;
    /// By antenna, system and number, until the log has ended.
    std::vector<std::unique_ptr<SatelliteCounts>> m_counts;
    std::optional<SetUp> m_setUp;
    std::optional<Place> m_place;
    std::optional<LeapSecondsInfo> m_leapSeconds;
    std::map<uint8_t, int8_t> m_channels;
    bool m_isReceived = false; ///< whether the leap seconds come from a satellite
};

} // namespace tqx
