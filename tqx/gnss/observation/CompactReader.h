#pragma once

#include "tqx/gnss/compact/CompactSignal.h"
#include "tqx/gnss/observation/LockTracker.h"
#include "tqx/log/time/GnssTime.h"

#include "TQX_codec.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tqx
{

/// A signal of a compact epoch.
struct CompactObservation {
    uint8_t constellation;
    uint8_t number; ///< of the satellite in its constellation
    uint8_t signal;
    uint8_t slot; ///< GLONASS frequency number plus 8
    bool isHalfCycle = false;
    std::optional<int64_t> range;   ///< millimetres; nothing when not measured or not complete
    std::optional<int64_t> carrier; ///< carrier phase in millimetres, likewise
    double doppler = notMeasured;   ///< hertz
    double cn0 = notMeasured;       ///< dB-Hz
    double lockTime = notMeasured;  ///< seconds
    double multipath = notMeasured; ///< metres
    LockTracker::Evidence evidence;
};

/// Completes the measurements of compact blocks: those of one epoch with its extensions, from
/// reference and earlier epochs, of which it keeps what that needs.
class CompactReader
{
public:
    /// Begins an epoch, which ends the one before.
    void take(const Kor::MessageApi::TQX_Meas3Ranges_s& record, GnssMillis time);

    /// Adds extensions; those of another time than the current epoch are ignored.
    void take(const Kor::MessageApi::TQX_Meas3CN0HiRes_s& record, GnssMillis time);
    void take(const Kor::MessageApi::TQX_Meas3Doppler_s& record, GnssMillis time);
    void take(const Kor::MessageApi::TQX_Meas3PP_s& record, GnssMillis time);
    void take(const Kor::MessageApi::TQX_Meas3MP_s& record, GnssMillis time);

    /// Ends the current epoch and returns its observations, valid until the next call.
    const std::vector<CompactObservation>& finish();

    /// Number of values that nothing completes, in all epochs so far.
    uint64_t getIncomplete() const { return m_incomplete; }

private:
    /// A number of millimetres, or what is left of it by a modulus.
    struct Value {
        int64_t value = 0;
        int64_t modulus = 0; ///< 0: complete
        bool isMissing = false;
    };
    /// A signal as in its entry.
    struct Entry {
        CompactObservation observation;
        bool isMaster = true;
        Value code;            ///< of a slave: minus that of the master, or see isChange
        Value carrier;         ///< minus the code
        bool isChange = false; ///< the code is its change since the reference epoch
        bool isShort = false;  ///< a carrier that is near the code if nothing else is known
    };
    struct Known {
        CompactSignal signal;
        GnssMillis time = 0;
        uint8_t jumps = 0;
        uint8_t jumpsAtReference = 0;
    };

    void addMaster(const Kor::MessageApi::TQX_M3SatData_s& satellite, Entry entry);
    void addSlave(const Kor::MessageApi::TQX_M3SatData_s& satellite, Entry entry);
    void complete(Entry& entry, const Entry* master);
    std::optional<int64_t> codeOf(const Entry& entry, const Entry* master, const Known& known,
                                  const CompactSignal::Moment& moment) const;
    Known& knownOf(const Entry& entry);

    /// By constellation and number of a satellite, and number of a signal.
    std::map<std::array<uint8_t, 3>, Known> m_known;
    std::vector<Entry> m_entries;
    std::vector<CompactObservation> m_observations;
    GnssMillis m_time = 0;
    bool m_isOpen = false;
    bool m_isReference = false;
    double m_reference = 0; ///< seconds
    uint8_t m_jumps = 0;
    uint64_t m_incomplete = 0;
};

} // namespace tqx
