#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/Broadcast.h"

#include <algorithm>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint16_t leapWeek = 1929; ///< GPS week at whose end the last leap second came
constexpr uint8_t lastDay = 7;      ///< of the week, counted from 1
constexpr uint8_t tookPlace = 2;

/// When the last frame of that many seconds began, in milliseconds of the week.
uint32_t frameStart(const SystemTime& now, uint32_t length)
{
    return static_cast<uint32_t>(now.second) / length * length * 1000;
}

/// The first visible satellite of a system, or null.
const Satellite* firstOf(const Receiver& receiver, System system)
{
    const auto& sights = receiver.getSights();
    const auto sight = std::find_if(sights.begin(), sights.end(), [system](const Sight& each) {
        return each.satellite->getSystem() == system;
    });
    return sight == sights.end() ? nullptr : sight->satellite;
}

/// ... as the sender of what all of them send alike; 0 for none.
uint8_t senderOf(const Receiver& receiver, System system)
{
    const Satellite* const sender = firstOf(receiver, system);
    return sender == nullptr ? uint8_t{0} : sender->getSvid();
}

template<typename Record>
void fillIonosphere(Record& record, uint8_t sender, const SystemTime& now)
{
    record.PRN = sender;
    record.t_tm = frameStart(now, 30);
    record.alpha_0 = static_cast<float>(klobuchar.amplitude[0]);
    record.alpha_1 = static_cast<float>(klobuchar.amplitude[1]);
    record.alpha_2 = static_cast<float>(klobuchar.amplitude[2]);
    record.alpha_3 = static_cast<float>(klobuchar.amplitude[3]);
    record.beta_0 = static_cast<float>(klobuchar.period[0]);
    record.beta_1 = static_cast<float>(klobuchar.period[1]);
    record.beta_2 = static_cast<float>(klobuchar.period[2]);
    record.beta_3 = static_cast<float>(klobuchar.period[3]);
}

void addGpsPages(BlockLog& log, const Epoch& epoch, uint8_t sender)
{
    const SystemTime now(System::Gps, epoch.time);
    TQX_GPSIon_s ionosphere;
    TQX_init_GPSIon(&ionosphere);
    fillIonosphere(ionosphere, sender, now);
    log.add(epoch, ionosphere, TQX_encode_GPSIon);

    TQX_GPSUtc_s utc;
    TQX_init_GPSUtc(&utc);
    utc.PRN = sender;
    utc.t_tm = frameStart(now, 30);
    utc.A_0 = 0;
    utc.A_1 = 0;
    utc.t_ot = 503808;
    utc.WN_t = now.week;
    utc.WN_LSF = leapWeek;
    utc.DEL_t_LS = leapSeconds;
    utc.DEL_t_LSF = leapSeconds;
    utc.DN = lastDay;
    utc.LeapEvent = tookPlace;
    log.add(epoch, utc, TQX_encode_GPSUtc);
}

void addGalileoPages(BlockLog& log, const Epoch& epoch, uint8_t sender)
{
    const SystemTime now(System::Galileo, epoch.time);
    // Solar flux units, of a quiet year.
    TQX_GALIon_s ionosphere;
    TQX_init_GALIon(&ionosphere);
    ionosphere.Source = 1;
    ionosphere.SVID = sender;
    ionosphere.IODnav = 65535; // only in the other message
    ionosphere.a_0 = 62.5F;
    ionosphere.a_1 = 0.1953125F;
    ionosphere.a_2 = 0.003662109375F;
    log.add(epoch, ionosphere, TQX_encode_GALIon);

    TQX_GALUtc_s utc;
    TQX_init_GALUtc(&utc);
    utc.SVID = sender;
    utc.t_tm = frameStart(now, 30);
    utc.A_0 = 0;
    utc.A_1 = 0;
    utc.t_ot = 345600;
    utc.WN_ot = now.week;
    utc.WN_LSF = leapWeek - galileoWeekZero;
    utc.DEL_t_LS = leapSeconds;
    utc.DEL_t_LSF = leapSeconds;
    utc.DN = lastDay;
    utc.LeapEvent = tookPlace;
    log.add(epoch, utc, TQX_encode_GALUtc);

    TQX_GALGstGps_s offset;
    TQX_init_GALGstGps(&offset);
    offset.SVID = sender;
    offset.A_0G = 0;
    offset.A_1G = 0;
    offset.t_0G = 345600;
    offset.WN_0G = now.week;
    offset.Source = 1;
    offset.Valid = 1;
    log.add(epoch, offset, TQX_encode_GALGstGps);
}

void addBeiDouPages(BlockLog& log, const Epoch& epoch, uint8_t sender)
{
    const SystemTime now(System::BeiDou, epoch.time);
    TQX_BDSIon_s ionosphere;
    TQX_init_BDSIon(&ionosphere);
    fillIonosphere(ionosphere, sender, now);
    log.add(epoch, ionosphere, TQX_encode_BDSIon);

    constexpr int8_t leaps = leapSeconds - static_cast<int8_t>(beiDouDelay);
    TQX_BDSUtc_s utc;
    TQX_init_BDSUtc(&utc);
    utc.WN_ot = now.week;
    utc.t_tm = frameStart(now, 30);
    utc.A_0 = 0;
    utc.A_1 = 0;
    utc.DEL_t_LS = leaps;
    utc.DEL_t_LSF = leaps;
    utc.WN_LSF = static_cast<uint8_t>((leapWeek - beiDouWeekZero) % 256);
    utc.DN = lastDay - 1;
    log.add(epoch, utc, TQX_encode_BDSUtc);
}

} // namespace

void addGlonassEphemeris(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    // Values of t_b half an hour apart, an odd multiple of 15 minutes; almanac of five satellites.
    constexpr uint8_t flags = 1 | 1 << 2 | 1 << 3;
    const GlonassEphemeris ephemeris = glonassEphemeris(satellite, epoch.time);
    TQX_GLONav_s record;
    TQX_init_GLONav(&record);
    record.SVID = satellite.getSvid();
    record.FreqNr = frequencySlot(System::Glonass, satellite.getChannel());
    record.N_4 = ephemeris.fourYears;
    record.F_T = 2;
    record.M = 1;
    record.Flags = flags;
    record.N_T = ephemeris.day;
    record.WN = ephemeris.week;
    record.t_b = ephemeris.moscowTime;
    record.t_k = MoscowTime(epoch.time).second / 30 * 30;
    record.t_oe = ephemeris.toe;
    record.X = ephemeris.motion.position.x;
    record.Y = ephemeris.motion.position.y;
    record.Z = ephemeris.motion.position.z;
    record.Vx = static_cast<float>(ephemeris.motion.velocity.x);
    record.Vy = static_cast<float>(ephemeris.motion.velocity.y);
    record.Vz = static_cast<float>(ephemeris.motion.velocity.z);
    record.Ax = static_cast<float>(ephemeris.acceleration.x);
    record.Ay = static_cast<float>(ephemeris.acceleration.y);
    record.Az = static_cast<float>(ephemeris.acceleration.z);
    record.gamma_n = static_cast<float>(ephemeris.clockDrift);
    record.tau_n = static_cast<float>(ephemeris.clockBias);
    record.DEL_tau_n = static_cast<float>(satellite.getGroupDelays()[0]);
    log.add(epoch, record, TQX_encode_GLONav);
}

void addGlonassTime(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    const Satellite* const sender = firstOf(receiver, System::Glonass);
    if (sender == nullptr)
        return;
    const Satellite& satellite = *sender;
    const MoscowTime now(epoch.time);
    TQX_GLOTime_s record;
    TQX_init_GLOTime(&record);
    record.SVID = satellite.getSvid();
    record.FreqNr = frequencySlot(System::Glonass, satellite.getChannel());
    record.N_4 = now.fourYears;
    record.N_T = now.day;
    record.N_A = now.day;
    record.WN = epoch.week;
    record.tau_GPS = 0;
    record.tau_c = 0;
    record.B1 = 0;
    record.B2 = 0;
    log.add(epoch, record, TQX_encode_GLOTime);
}

void addSystemPages(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    addGpsPages(log, epoch, senderOf(receiver, System::Gps));
    addGlonassTime(log, epoch, receiver);
    addGalileoPages(log, epoch, senderOf(receiver, System::Galileo));
    addBeiDouPages(log, epoch, senderOf(receiver, System::BeiDou));
}

} // namespace tqx::simulation
