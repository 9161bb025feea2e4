#pragma once

#include "tqx/gnss/quality/Episodes.h"
#include "tqx/gnss/quality/Statistics.h"
#include "tqx/gnss/quality/ThinnedSeries.h"

#include <map>

namespace tqx::quality
{

/// What the receiver says about itself: load, temperature, gains, errors, interference, dilution of
/// precision and its set-up.
class ReceiverQuality
{
public:
    static bool wants(uint16_t blockNumber);

    /// The record of a block that is wanted.
    void take(uint16_t blockNumber, const void* record, GnssMillis time);

    /// Fills in figures, plots and findings but those about positions.
    void report(Quality& quality);

private:
    struct State {
        uint32_t upTime = 0;
        GnssMillis time = 0;
    };
    struct Change {
        GnssMillis time;
        std::string subject;
    };

    template<typename Record>
    void takeStatus(const Record& record, GnssMillis time);
    template<typename Record>
    void takeErrors(const Record& record, GnssMillis time);
    void takeGains(const void* record, GnssMillis time);
    void takeBands(const void* record, GnssMillis time);
    void takeSetUp(const void* record, GnssMillis time);
    template<typename Record>
    void takeDilution(const Record& record, GnssMillis time);
    void addFinding(Quality& quality, FindingKind kind, Episodes& episodes,
                    const std::string& text) const;

    Moments m_load;
    Moments m_temperature;
    Moments m_pdop;
    Moments m_hdop;
    Moments m_vdop;
    ThinnedSeries m_loadSeries;
    ThinnedSeries m_temperatureSeries;
    ThinnedSeries m_pdopSeries;
    ThinnedSeries m_hdopSeries;
    ThinnedSeries m_vdopSeries;
    std::map<unsigned, ThinnedSeries> m_gains; ///< by front end and antenna
    State m_state;
    std::vector<Change> m_restarts;
    std::vector<Change> m_setUps;
    std::string m_marker;
    std::string m_receiver;
    std::string m_antenna;
    std::string m_setUp;
    bool m_knowsInterference = false;
    Episodes m_interference{10000};
    Episodes m_antennaFaults{10000};
    Episodes m_errors{10000};
};

} // namespace tqx::quality
