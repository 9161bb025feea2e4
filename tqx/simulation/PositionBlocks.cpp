#include "tqx/simulation/Blocks.h"

#include "tqx/log/time/CalendarDate.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx/simulation/UsedSatellites.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr double angleStep = 1e-11; // radians, well below a millimetre
constexpr float notAvailable = -2e10F;
constexpr uint8_t standalone = 1;
constexpr uint8_t differential = 2;
constexpr uint16_t baseStation = 1042;
constexpr uint8_t raimPassed = 1;

float metres(double value)
{
    return static_cast<float>(rounded(value, 1e-4));
}

/// Fields that the blocks with either kind of coordinates have in common.
template<typename Record>
void fillSolution(Record& record, const Receiver& receiver)
{
    const Solution& solution = receiver.getSolution();
    record.Revision = 2;
    record.Mode = standalone;
    record.Undulation = metres(Receiver::undulation);
    record.RxClkBias = rounded(solution.clockBias * 1e3, 1e-8);
    record.RxClkDrift = static_cast<float>(rounded(solution.clockDrift * 1e6, 1e-6));
    record.TimeSystem = 0;
    record.Datum = 0;
    record.NrSV = static_cast<uint8_t>(solution.usedSatellites());
    record.ReferenceID = 65535;
    record.MeanCorrAge = 65535;
    if (const std::optional<double> age = receiver.getCorrectionAge()) {
        record.Mode = differential;
        record.ReferenceID = baseStation;
        record.MeanCorrAge = static_cast<uint16_t>(steps(*age, 0.01));
    }
    record.SignalInfo = usedSignals(receiver);
    record.AlertFlag = raimPassed;
    record.Latency = static_cast<uint16_t>(steps(0.012, 1e-4));
}

float courseOf(const Vector& velocity)
{
    constexpr double slowest = 0.1; // metres per second; no course below this speed
    if (std::hypot(velocity.x, velocity.y) < slowest)
        return notAvailable;
    const double degrees = std::atan2(velocity.x, velocity.y) * 180 / pi;
    return static_cast<float>(rounded(degrees < 0 ? degrees + 360 : degrees, 0.01));
}

void addGeodetic(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    const Solution& solution = receiver.getSolution();
    TQX_PVTGeodetic2_s record;
    TQX_init_PVTGeodetic2(&record);
    fillSolution(record, receiver);
    record.Latitude = rounded(solution.position.latitude, angleStep);
    record.Longitude = rounded(solution.position.longitude, angleStep);
    record.Height = rounded(solution.position.height, 1e-4);
    record.Vn = metres(solution.velocity.y);
    record.Ve = metres(solution.velocity.x);
    record.Vu = metres(solution.velocity.z);
    record.COG = courseOf(solution.velocity);
    const Covariance& covariance = solution.positionCovariance;
    record.HAccuracy =
        static_cast<uint16_t>(steps(2 * std::sqrt(covariance[0][0] + covariance[1][1]), 0.01));
    record.VAccuracy = static_cast<uint16_t>(steps(1.96 * std::sqrt(covariance[2][2]), 0.01));
    log.add(epoch, record, TQX_encode_PVTGeodetic2);
}

void addCartesian(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    const Solution& solution = receiver.getSolution();
    const Motion& antenna = solution.antenna;
    const Covariance& covariance = solution.positionCovariance;
    TQX_PVTCartesian2_s record;
    TQX_init_PVTCartesian2(&record);
    fillSolution(record, receiver);
    record.X = rounded(antenna.position.x, 1e-4);
    record.Y = rounded(antenna.position.y, 1e-4);
    record.Z = rounded(antenna.position.z, 1e-4);
    record.Vx = metres(antenna.velocity.x);
    record.Vy = metres(antenna.velocity.y);
    record.Vz = metres(antenna.velocity.z);
    record.Accuracy = static_cast<uint16_t>(
        steps(2 * std::sqrt(covariance[0][0] + covariance[1][1] + covariance[2][2]), 0.01));
    log.add(epoch, record, TQX_encode_PVTCartesian2);
}

void addDilution(BlockLog& log, const Epoch& epoch, const Solution& solution)
{
    const Covariance& c = solution.cofactors;
    const auto root = [](double value) {
        return static_cast<float>(rounded(std::sqrt(value), 0.01));
    };
    TQX_DOP2_s record;
    TQX_init_DOP2(&record);
    record.NrSV = static_cast<uint8_t>(solution.usedSatellites());
    record.PDOP = root(c[0][0] + c[1][1] + c[2][2]);
    record.TDOP = root(c[3][3]);
    record.HDOP = root(c[0][0] + c[1][1]);
    record.VDOP = root(c[2][2]);
    fillCounts(record, solution);
    log.add(epoch, record, TQX_encode_DOP2);
}

} // namespace

void addPosition(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    addCartesian(log, epoch, receiver);
    addGeodetic(log, epoch, receiver);
    addCovariances(log, epoch, receiver.getSolution());
    addDilution(log, epoch, receiver.getSolution());
    TQX_EndOfPVT1_s end;
    TQX_init_EndOfPVT1(&end);
    log.add(epoch, end, TQX_encode_EndOfPVT1);
}

void addTime(BlockLog& log, const Epoch& epoch)
{
    constexpr uint8_t known = 7 | 1 << 7; // week, time of week, fine time: all of them
    const GnssMillis utc = epoch.week * millisPerWeek + epoch.towMillis - leapSeconds * 1000;
    const CalendarDate date = dateOf(utc / (secondsPerDay * 1000));
    const auto second = static_cast<uint32_t>(utc / 1000 % secondsPerDay);
    TQX_ReceiverTime_s record;
    TQX_init_ReceiverTime(&record);
    record.UTCYear = static_cast<uint8_t>(date.year - 2000);
    record.UTCMonth = static_cast<uint8_t>(date.month);
    record.UTCDay = static_cast<uint8_t>(date.day);
    record.UTCHour = static_cast<uint8_t>(second / 3600);
    record.UTCMinute = static_cast<uint8_t>(second / 60 % 60);
    record.UTCSecond = static_cast<uint8_t>(second % 60);
    record.DeltaLS = leapSeconds;
    record.SyncLevel = known;
    log.add(epoch, record, TQX_encode_ReceiverTime);
}

void addTimeOffsets(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr double nanosecond = 1e-9;
    const Solution& solution = receiver.getSolution();
    TQX_SysTimeOffset_s record;
    TQX_init_SysTimeOffset(&record);
    record.ReferenceSystem = 0;
    // SBAS has the time of GPS.
    for (unsigned system = 1; system < indexOf(System::Sbas); ++system) {
        if (solution.used[system] == 0)
            continue;
        const double deviation = std::sqrt(solution.offsetVariances[system]) / speedOfLight;
        TQX_TimeOffsetSub_s& offset = *TQX_append_SysTimeOffset_TimeOffset(&record);
        offset.TimeSystem = static_cast<uint8_t>(system);
        offset.NrSV = solution.used[system];
        offset.StdDev =
            static_cast<uint16_t>(std::min(steps(deviation, nanosecond * 1e-3), int64_t{65534}));
        // A system whose time is ahead sends earlier, which shortens its codes.
        offset.TimeOffset =
            rounded(-solution.offsets[system] / speedOfLight - Receiver::systemDelays[system],
                    nanosecond * 1e-3);
        offset.TimeOffsetRate = 0;
    }
    log.add(epoch, record, TQX_encode_SysTimeOffset);
}

} // namespace tqx::simulation
