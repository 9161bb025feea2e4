#pragma once

#include "model/Directions.h"
#include "model/LogReading.h"

#include "tqx/gnss/observation/Observation.h"
#include "tqx/gnss/position/Position.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace tqx::view
{

class TqxLog;

struct SignalStrength {
    SatelliteId satellite;
    SignalCode code;
    float cn0; ///< dB-Hz
};

struct SkyEpoch {
    double time; ///< milliseconds of GNSS time, as everywhere here
    std::vector<SignalStrength> signals;
};

struct DirectionEpoch {
    double time;
    std::vector<Direction> directions;
};

/// When a signal of a satellite was tracked.
struct Visibility {
    struct Span {
        double from;
        double to;
    };

    SatelliteId satellite;
    SignalCode code;
    std::vector<Span> spans;
};

struct TrackPoint {
    double time;
    double latitude; ///< degrees
    double longitude;
    double height; ///< metres above the ellipsoid
    Fix fix;
};

/// What a log says about satellites and positions; only for the main antenna.
struct GnssData {
    std::vector<SkyEpoch> strengths;        ///< thinned evenly when there are many
    std::vector<DirectionEpoch> directions; ///< likewise
    std::vector<Visibility> visibility;     ///< by satellite and signal, of all epochs
    std::vector<TrackPoint> track;          ///< of the best kind of position, thinned evenly
    QString trackSource;                    ///< its name
    uint64_t positions = 0;                 ///< before thinning
};

/// Reads them in another thread, in bounded memory.
class GnssSurvey : public LogReading
{
    Q_OBJECT

public:
    explicit GnssSurvey(QObject* parent = nullptr);
    ~GnssSurvey() override;

    /// Starts reading another log, or none; changed() follows when it has been read. With
    /// `isContinued`, what is known of the log so far is kept meanwhile.
    void setLog(std::shared_ptr<const TqxLog> log, bool isContinued = false);

    const GnssData& getData() const { return *m_data; }

    static constexpr size_t mostEpochs = 2000;
    static constexpr size_t mostPositions = 50'000;
    static constexpr size_t mostSpans = 500'000; ///< of all signals

protected:
    void take(const Result& result) override;

private:
    std::shared_ptr<const GnssData> m_data;
};

/// Does the work of GnssSurvey in the calling thread; null when the token is cancelled.
std::shared_ptr<const GnssData> readGnss(const TqxLog& log, const TaskToken& token);

} // namespace tqx::view
