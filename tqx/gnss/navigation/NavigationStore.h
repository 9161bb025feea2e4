#pragma once

#include "tqx/gnss/navigation/Ephemeris.h"
#include "tqx/gnss/navigation/SystemData.h"
#include "tqx_gnss_export.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace tqx
{

/// What of a log's navigation blocks did not become ephemerides and the like.
struct TQX_GNSS_API NavigationLosses {
    uint64_t withoutTime = 0;      ///< blocks whose header has no time
    uint64_t withoutSatellite = 0; ///< ephemerides of satellites whose number is not known
    uint64_t ofNavicL1 = 0;        ///< blocks with an ephemeris of NavIC from the message on L1

    /// A line for each of them that occurred.
    std::vector<std::string> describe() const;
};

/// The navigation messages of a log, each once however often it was received.
class TQX_GNSS_API NavigationStore
{
public:
    /// Whether blocks of this number hold something for the store.
    static bool wants(uint16_t blockNumber);

    /// Adds a decoded, wanted block.
    void take(const DecodedBlock& decoded);

    /// In the order in which they were received first.
    const std::vector<Ephemeris>& getEphemerides() const { return m_ephemerides; }
    const std::vector<Ionosphere>& getIonosphere() const { return m_ionosphere; }
    const std::vector<TimeOffset>& getTimeOffsets() const { return m_offsets; }

    bool isEmpty() const
    {
        return m_ephemerides.empty() && m_ionosphere.empty() && m_offsets.empty();
    }

    const NavigationLosses& getLosses() const { return m_losses; }

private:
    using Key = std::tuple<char, uint8_t, NavigationMessage, GnssMillis>;

    void add(const Ephemeris& ephemeris);
    void add(const Ionosphere& data);
    void add(const TimeOffset& offset);

    std::vector<Ephemeris> m_ephemerides;
    std::multimap<Key, size_t> m_places; ///< of an ephemeris
    std::vector<Ionosphere> m_ionosphere;
    std::map<char, size_t> m_lastIonosphere;
    std::vector<TimeOffset> m_offsets;
    std::map<std::string, size_t> m_lastOffset;
    NavigationLosses m_losses;
};

} // namespace tqx
