#pragma once

#include "tqx/gnss/observation/LockTracker.h"
#include "tqx/gnss/observation/Observation.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx_gnss_export.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tqx
{

class CompactReader;

/// Measurements of a log that did not become observations.
struct TQX_GNSS_API ObservationLosses {
    uint64_t withoutTime = 0;      ///< blocks whose header has no time
    uint64_t outOfOrder = 0;       ///< epochs at or before the time of the epoch before
    uint64_t withoutSlot = 0;      ///< observations of GLONASS satellites whose slot is not known
    uint64_t withoutSatellite = 0; ///< observations of satellites whose number is not known
    uint64_t incomplete = 0;       ///< compact measurements without anything that completes them
    std::set<std::pair<char, uint8_t>> signals; ///< system and number of signals without a code

    /// One line for each of them that occurred.
    std::vector<std::string> describe() const;
};

/// Makes epochs of observations from the measurement blocks of a log, whatever their generation:
/// MeasEpoch2, GenMeasEpoch, MeasFullRange, Meas3Ranges with its extensions, MeasEpoch1 and
/// ShortMeasEpoch, with what MeasExtra adds and the clock bias of the position blocks. Where an
/// epoch comes in several generations, the first of these is used. Keeps one epoch in memory, and
/// what completes compact measurements.
///
///     ObservationGatherer gatherer([](ObservationEpoch& epoch) { use(epoch); });
///     while (stream.next(block))
///         if (ObservationGatherer::wants(block.getNumber()) && decoder.decode(block) > 0)
///             gatherer.take(decoder.getDecoded());
///     gatherer.finish();
class TQX_GNSS_API ObservationGatherer
{
public:
    /// Receives the epochs in ascending order of time, each once a block of a later time or the end
    /// has come. Returns whether the epoch is shown: losses of lock in one that is not shown are
    /// reported with the next one that is.
    using Receiver = std::function<bool(ObservationEpoch& epoch)>;

    explicit ObservationGatherer(Receiver receiver);
    ~ObservationGatherer();

    /// Whether blocks of this number have anything to do with observations.
    static bool wants(uint16_t blockNumber);

    /// Adds a decoded, wanted block, in the order of the log.
    void take(const DecodedBlock& decoded);

    /// Declares that no earlier measurement follows: an epoch before that time is passed on.
    void advance(GnssMillis time);

    /// Ends the log.
    void finish() { close(); }

    const ObservationLosses& getLosses() const { return m_losses; }

private:
    /// Generations of measurements, better ones later.
    enum class Source : uint8_t { None, Short, First, Compact, FullRange, Generic, Second };

    struct Extra {
        uint8_t svid;
        uint8_t signal;
        uint8_t antenna;
        double cn0Fraction;
        double lockTime;
        std::optional<uint8_t> losses;
        double rangeDeviation;
        double phaseDeviation;
        double multipath;
        double smoothing;
    };

    bool begin(const Kor::MessageApi::TQX_MainHeader_s& header, Source source);
    Observation* add(uint8_t svid, uint8_t signal, uint8_t antenna, uint8_t slot);
    template<typename Entry>
    Observation* addEntry(uint8_t svid, const Entry& entry, double limit, double lockTime);
    template<typename Record>
    void takeEpoch(const Record& record, bool isE6B);
    void takeShort(const void* record);
    void takeFirst(const void* record);
    void takeFullRange(const void* record);
    void takeCompact(uint16_t number, const void* record);
    void addCompact();
    void takeExtra(const void* record);
    void takeBias(const Kor::MessageApi::TQX_MainHeader_s& header, double bias, uint8_t system);
    void join(const Extra& extra);
    void clearEpoch();
    void close();

    Receiver m_receiver;
    LockTracker m_tracker;
    ObservationEpoch m_epoch;
    std::vector<LockTracker::Evidence> m_evidence;        ///< of each of its observations
    std::vector<uint8_t> m_svids;                         ///< likewise
    std::array<std::array<uint64_t, 8>, 256> m_seen = {}; ///< signals by satellite and antenna
    size_t m_joined = 0; ///< place of the last observation with an extra
    std::vector<Extra> m_extras;
    GnssMillis m_extrasTime = 0;
    Source m_source = Source::None; ///< of the current epoch
    bool m_isE6B = false;
    bool m_isSmoothed = false;        ///< of a compact epoch
    std::optional<GnssMillis> m_last; ///< time of the last epoch that was passed on
    GnssMillis m_biasTime = 0;
    double m_bias = notMeasured;
    std::unique_ptr<CompactReader> m_compact; ///< once there are such blocks
    ObservationLosses m_losses;
};

} // namespace tqx
