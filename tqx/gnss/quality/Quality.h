#pragma once

#include "tqx/gnss/observation/SatelliteId.h"
#include "tqx/gnss/observation/SignalCode.h"
#include "tqx/gnss/position/Position.h"
#include "tqx/log/time/GnssTime.h"

#include "tqx_gnss_export.h"

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// How good the data of a log are. Numbers that cannot be computed from the log are NaN.
namespace tqx::quality
{

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// A stretch of time in which something was wrong.
struct Episode {
    GnssMillis start = 0;
    GnssMillis end = 0;
    double worst = 0; ///< largest value of the quantity concerned
    std::string subject;
};

/// Kinds of findings in a log.
enum class FindingKind : uint8_t {
    Outage,        ///< no measurements
    SystemOutage,  ///< no satellite of a system, while others are tracked
    Multipath,     ///< the code of a satellite deviates more than that of others
    Slip,          ///< a phase is not continuous
    Interference,  ///< the receiver reports a disturbed band
    Antenna,       ///< the receiver reports an antenna that is open or shorted
    WeakSignals,   ///< C/N0 falls on all satellites at once, for no reported reason
    Corrections,   ///< corrections stopped or are too old
    Restart,       ///< the receiver restarted
    ReceiverError, ///< another error that the receiver reports
    SetUpChange,   ///< marker, receiver or antenna changed
    Damage,        ///< bytes that belong to no block
};

/// How the elevation of a satellite is known.
enum class ElevationSource : uint8_t {
    None,        ///< not at all
    Visibility,  ///< the receiver's blocks on visibility
    Channels,    ///< its blocks on channels
    Ephemerides, ///< computed from ephemerides and the place of the antenna
};
constexpr size_t elevationSourceCount = 4;

/// Stable name for machines: "visibility".
TQX_GNSS_API const char* nameOf(ElevationSource source);

/// Stable name for machines: "system_outage".
TQX_GNSS_API const char* nameOf(FindingKind kind);

struct Finding {
    FindingKind kind = FindingKind::Outage;
    GnssMillis start = 0;
    GnssMillis end = 0; ///< equal to the start for a moment
    std::string subject;
    double value = none; ///< of what the text says
    std::string text;    ///< in words, without the time
    uint8_t antenna = 0; ///< at which it was measured, 0 the main one
};

/// A mean with its spread.
struct Spread {
    uint64_t count = 0;
    double mean = none;
    double deviation = none; ///< root of the mean square of deviations from the mean
    double least = none;
    double most = none;
};

/// One signal of a system over the whole log, above the mask.
struct SignalQuality {
    char system = ' ';
    SignalCode code;
    uint64_t observations = 0;
    Spread cn0;                           ///< dB-Hz
    std::array<Spread, 9> cn0ByElevation; ///< in steps of ten degrees
    double multipath = none;              ///< metres, root mean square over all arcs
    uint64_t multipathEpochs = 0;
    uint64_t slips = 0;
};

/// A satellite over the whole log, above the mask.
struct SatelliteQuality {
    SatelliteId satellite;
    uint64_t epochs = 0;
    double cn0 = none;       ///< dB-Hz, mean of all signals
    double multipath = none; ///< metres, of all signals
    uint64_t slips = 0;
    double highest = none; ///< degrees
};

struct Slip {
    GnssMillis time = 0;
    SatelliteId satellite;
    bool isLossOfLock = false; ///< lock was lost; else the geometry-free phase jumps
    double jump = none;        ///< metres, the largest of the satellite's pairs of signals
    std::string signals;       ///< codes that lost lock, or whose phase jumps against the first
};

/// Where a satellite was, thinned.
struct SkyPoint {
    GnssMillis time;
    float azimuth;   ///< degrees
    float elevation; ///< degrees
};

struct SkyTrack {
    SatelliteId satellite;
    std::vector<SkyPoint> points;
};

/// Values over time, thinned to stretches of equal width that keep their extremes.
struct SeriesPoint {
    GnssMillis time; ///< at which the stretch begins
    float least;
    float most;
    float mean;
};

struct Series {
    std::string name;
    uint64_t width = 0; ///< of a stretch, milliseconds
    std::vector<SeriesPoint> points;
};

/// Series that belong together.
struct Plot {
    std::string key;
    std::string title;
    std::string unit;
    std::vector<Series> series;
};

struct FixShare {
    Fix fix = Fix::None;
    uint64_t epochs = 0;
};

/// Errors against a known place, or scatter around the mean: metres, to east, north and up.
struct Scatter {
    uint64_t epochs = 0;
    std::array<double, 3> mean = {none, none, none};
    std::array<double, 3> deviation = {none, none, none}; ///< around the mean
    double horizontalRms = none; ///< of the distance to the reference, or around the mean
    double verticalRms = none;
    double horizontal95 = none; ///< not exceeded by 95 % of the epochs; only against a reference
    double vertical95 = none;
};

/// The measurements at one antenna.
struct AntennaQuality {
    uint8_t number = 0;              ///< as observations have it, 0 the main one
    std::optional<GnssMillis> first; ///< of the epochs that are counted
    std::optional<GnssMillis> last;
    bool isOfPositions = false; ///< epochs are those of positions, because nothing was measured
    double interval = none;     ///< seconds
    uint64_t epochsFound = 0;
    uint64_t epochsExpected = 0;
    uint64_t outages = 0;
    double outageSeconds = 0;
    double longestOutage = 0;

    Spread satellites; ///< tracked in an epoch, above the mask
    uint64_t observations = 0;
    Spread cn0;
    double multipath = none; ///< metres, of all signals
    uint64_t slips = 0;
    uint64_t slipsByLock = 0;

    std::vector<SignalQuality> signals;
    std::vector<SatelliteQuality> satelliteList;
    std::vector<Slip> slipList;                    ///< the first of them
    std::map<FindingKind, uint64_t> findingCounts; ///< of all, listed or not
};

/// All about one log; its measurements are those of the main antenna.
struct Quality : AntennaQuality {
    std::string marker;
    std::string receiver;
    std::string antenna; ///< type and serial number of the main one

    uint64_t outOfOrder = 0; ///< epochs at or before the time of the one before
    Spread satellitesUsed;
    uint64_t clockJumps = 0;
    bool hasElevations = false; ///< the mask could be applied

    /// Observations by how the elevations of their satellites are known.
    std::array<uint64_t, elevationSourceCount> elevationSources = {};

    std::vector<AntennaQuality> otherAntennas; ///< ascending, those that measured something

    std::string positionSource; ///< kind of block; empty without positions
    uint64_t positions = 0;
    std::vector<FixShare> fixes;
    bool isMoving = false;
    Scatter scatter;
    Scatter error; ///< against the reference
    Spread pdop;
    Spread hdop;
    Spread vdop;
    Spread correctionAge; ///< seconds

    Spread load;        ///< percent
    Spread temperature; ///< degrees Celsius
    uint64_t restarts = 0;
    double interferenceSeconds = none; ///< none when the receiver says nothing about it

    uint64_t bytes = 0;
    uint64_t blocks = 0;
    uint64_t damagedBytes = 0;
    uint64_t damagedPlaces = 0;
    uint64_t crcErrors = 0;
    uint64_t undecodable = 0;

    std::vector<Finding> findings; ///< those of all antennas, in the order of their starts
    std::vector<SkyTrack> sky;
    std::vector<Plot> plots;
};

} // namespace tqx::quality
