#pragma once

#include "tqx/gnss/observation/Observation.h"
#include "tqx/gnss/quality/Statistics.h"
#include "tqx/gnss/quality/ThinnedSeries.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace tqx::quality
{

/// An observation with what is known of its satellite.
struct SeenSignal {
    const Observation* observation;
    double elevation; ///< degrees, NaN when it is not known
    double frequency; ///< hertz, 0 when it is not known
};

/// Finds cycle slips and measures multipath from the continuous arcs of each satellite.
///
/// The signals of a satellite that have a phase are taken in the order of their codes; the first is
/// the reference A. An arc ends where its signals have no phase for more than three and a half
/// intervals, and at every slip.
///
/// A slip: a signal lost lock (see LockTracker), or the geometry-free phase of A and another
/// signal i, lambda_A phi_A - lambda_i phi_i, changes from one epoch to the next by more than
/// 0.10 m + 0.003 m/s times the time between them (geometry-free detection, such as in
/// G. Blewitt, "An automatic editing algorithm for GPS data", 1990; the rate leaves room for a
/// disturbed ionosphere). Everything found for a satellite at one epoch is one slip.
///
/// Multipath of signal i is the code-minus-carrier combination
///     M = P_i - L_i - 2 f_j^2 / (f_i^2 - f_j^2) (L_i - L_j),  L = lambda phi,
/// with A as j, or for the signals on the frequency of A the first signal on another one. For two
/// frequencies this is MP1 and MP2 of L. Estey and C. Meertens, "TEQC: the multi-purpose toolkit
/// for GPS/GLONASS data", 1999. Its mean over an arc, which contains the ambiguities, is removed;
/// the figure is the root mean square over all arcs of at least twenty epochs.
class ArcAnalysis
{
public:
    /// `signals` of one antenna, in the order of satellites and codes. `longestStep` is the time,
    /// in milliseconds, after which an arc ends.
    void take(GnssMillis time, const std::vector<SeenSignal>& signals, uint64_t longestStep);
    void finish();

    struct SignalFigures {
        double squares = 0; ///< of the multipath
        uint64_t epochs = 0;
        uint64_t slips = 0;
        double getMultipath() const;
    };
    using SignalKey = std::pair<char, SignalCode>;

    const std::map<SignalKey, SignalFigures>& getSignals() const { return m_signals; }
    const std::map<SatelliteId, SignalFigures>& getSatellites() const { return m_satelliteFigures; }
    const std::vector<Slip>& getSlips() const { return m_slips; }
    uint64_t getSlipCount() const { return m_slipCount; }
    uint64_t getSlipsByLock() const { return m_slipsByLock; }

    /// Stretches in which the code of a satellite deviates by more than a metre, and, scaled by the
    /// sine of the elevation, by 3.5 times the median of its signal.
    std::vector<Episode> findMultipath() const;

    /// Root mean square over stretches of a minute, by system.
    const std::map<char, ThinnedSeries>& getSeries() const { return m_series; }

private:
    struct Arc {
        Moments all;
        SignalCode partner;
        GnssMillis blockStart = 0;
        Moments block;           ///< of the last minute
        double blockSquares = 0; ///< of deviations from the mean of the arc until then
        double blockMean = 0;
        double elevations = 0; ///< their sum in the block
    };
    struct SignalState {
        SignalCode code;
        GnssMillis last = 0;
        double length = 0; ///< of the phase, metres
        Arc arc;
    };
    struct SatelliteState {
        SatelliteId satellite;
        std::vector<SignalState> signals;
    };
    struct Candidate {
        GnssMillis start;
        GnssMillis end;
        SatelliteId satellite;
        SignalCode code;
        float value;
        float scaled;
    };

    void takeSatellite(GnssMillis time, const SeenSignal* begin, const SeenSignal* end,
                       uint64_t longestStep);
    bool findSlip(GnssMillis time, SatelliteState& state, const SeenSignal* begin,
                  const SeenSignal* end, uint64_t longestStep);
    void addMultipath(GnssMillis time, SatelliteState& state, SignalState& signal,
                      const SeenSignal& seen, const SeenSignal& partner);
    void closeArc(const SatelliteId& satellite, SignalState& signal, GnssMillis time);
    void closeBlock(const SatelliteId& satellite, SignalState& signal, GnssMillis time);

    std::vector<std::unique_ptr<SatelliteState>> m_satellites;
    std::map<SignalKey, SignalFigures> m_signals;
    std::map<SatelliteId, SignalFigures> m_satelliteFigures;
    std::vector<Slip> m_slips;
    uint64_t m_slipCount = 0;
    uint64_t m_slipsByLock = 0;
    std::map<SignalKey, Quantiles> m_scaled; ///< multipath times the sine of the elevation
    std::vector<Candidate> m_candidates;
    std::map<char, ThinnedSeries> m_series;
};

} // namespace tqx::quality
