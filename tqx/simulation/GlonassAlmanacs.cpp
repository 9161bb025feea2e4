#include "tqx/simulation/GlonassAlmanacs.h"

#include "tqx/simulation/Broadcast.h"

#include <cmath>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

// Of the parameters of the earth PZ-90.
constexpr double gravitation = 3.986004418e14;
constexpr double rotation = 7.292115e-5;

struct Crossing {
    Motion motion;
    double time;
};

/// Where a satellite next passes the equator northwards, to a fraction of a microsecond.
Crossing nextCrossing(Motion motion, double time)
{
    constexpr double step = 60;
    for (double before = 0; before >= 0 || motion.position.z < 0; time += step) {
        before = motion.position.z;
        motion = integrated(motion, time, time + step);
    }
    for (int i = 0; i < 4; ++i) {
        const double crossed = time - motion.position.z / motion.velocity.z;
        motion = integrated(motion, time, crossed);
        time = crossed;
    }
    return {motion, time};
}

Vector cross(const Vector& a, const Vector& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

} // namespace

GlonassAlmanacs::Passage GlonassAlmanacs::passageOn(double day, const Satellite& satellite)
{
    constexpr double half = 20000; // of a period, nearly
    const Crossing first = nextCrossing(satellite.motionAt(day), day);
    const double later = first.time + half;
    const Crossing second = nextCrossing(integrated(first.motion, first.time, later), later);
    const auto& [position, velocity] = first.motion;
    const Vector free = {velocity.x - rotation * position.y, velocity.y + rotation * position.x,
                         velocity.z};
    const double distance = length(position);
    const Vector momentum = cross(position, free);
    const Vector toPerigee =
        (position * (dot(free, free) - gravitation / distance) - free * dot(position, free)) *
        (1 / gravitation);
    const Vector toNode = position * (1 / distance);
    const Vector ahead = cross(momentum * (1 / length(momentum)), toNode);
    return {day,
            first.time,
            second.time - first.time,
            std::atan2(position.y, position.x) / pi,
            std::acos(momentum.z / length(momentum)) / pi,
            length(toPerigee),
            std::atan2(dot(toPerigee, ahead), dot(toPerigee, toNode)) / pi};
}

void GlonassAlmanacs::add(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    constexpr double meanPeriod = 43200;
    constexpr double meanInclination = 63. / 180;
    const MoscowTime moscow(epoch.time);
    const double day = std::floor(epoch.time) - moscow.second;
    const auto [found, isNew] = m_passages.try_emplace(satellite.getSvid());
    if (isNew || found->second.day != day)
        found->second = passageOn(day, satellite);
    const Passage& passage = found->second;
    const auto value = [](double number, double step) {
        return static_cast<float>(rounded(number, step));
    };
    TQX_GLOAlm_s record;
    TQX_init_GLOAlm(&record);
    record.SVID = satellite.getSvid();
    record.FreqNr = frequencySlot(System::Glonass, satellite.getChannel());
    record.N_A = moscow.day;
    record.N_4 = moscow.fourYears;
    record.M = 1;
    record.t_lambda = value(passage.time - day, 0x1p-5);
    record.lambda_n = value(passage.longitude, 0x1p-20);
    record.delta_i = value(passage.inclination - meanInclination, 0x1p-20);
    record.e = value(passage.eccentricity, 0x1p-20);
    record.omega = value(passage.perigee, 0x1p-15);
    record.DEL_T = value(passage.period - meanPeriod, 0x1p-9);
    record.DEL_T_DOT = 0;
    record.tau_n = value(-satellite.clockAt(epoch.time), 0x1p-18);
    record.C_n = 1;
    log.add(epoch, record, TQX_encode_GLOAlm);
}

} // namespace tqx::simulation
