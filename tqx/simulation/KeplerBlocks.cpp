#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/Broadcast.h"

#include <cmath>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

/// Fields with the same names in the ephemerides of all three systems.
template<typename Record>
void fillOrbit(Record& record, const KeplerEphemeris& ephemeris)
{
    const KeplerElements& elements = ephemeris.elements;
    record.M_0 = elements.meanAnomaly;
    record.e = elements.eccentricity;
    record.i_0 = elements.inclination;
    record.omega = elements.perigee;
    record.OMEGA_0 = ephemeris.ascendingNode;
    record.OMEGADOT = static_cast<float>(elements.nodeRate);
    record.IDOT = static_cast<float>(elements.inclinationRate);
    record.DEL_N = static_cast<float>(elements.motionCorrection);
    record.C_uc = static_cast<float>(elements.cuc);
    record.C_us = static_cast<float>(elements.cus);
    record.C_rc = static_cast<float>(elements.crc);
    record.C_rs = static_cast<float>(elements.crs);
    record.C_ic = static_cast<float>(elements.cic);
    record.C_is = static_cast<float>(elements.cis);
    record.t_oe = ephemeris.toe;
    record.t_oc = ephemeris.toe;
    record.a_f0 = static_cast<decltype(record.a_f0)>(ephemeris.clockBias);
    record.a_f1 = static_cast<float>(ephemeris.clockDrift);
    record.a_f2 = 0;
}

template<typename Record>
void fillWeeks(Record& record, const KeplerEphemeris& ephemeris, const SystemTime& sent)
{
    record.WN = sent.week;
    record.WNt_oc = ephemeris.week;
    record.WNt_oe = ephemeris.week;
}

/// The messages of GPS and QZSS, which have the same fields.
template<typename Record>
void fillLegacy(Record& record, const Epoch& epoch, const Satellite& satellite,
                const KeplerEphemeris& ephemeris)
{
    fillOrbit(record, ephemeris);
    fillWeeks(record, ephemeris, SystemTime(satellite.getSystem(), epoch.time));
    record.PRN = satellite.getSvid();
    record.CAorPonL2 = 3;
    record.IODC = static_cast<uint16_t>(ephemeris.issue);
    record.IODE2 = static_cast<uint8_t>(ephemeris.issue);
    record.IODE3 = static_cast<uint8_t>(ephemeris.issue);
    record.T_gd = static_cast<float>(satellite.getGroupDelays()[0]);
    record.SQRT_A = ephemeris.elements.sqrtA;
}

void addGps(BlockLog& log, const Epoch& epoch, const Satellite& satellite,
            const KeplerEphemeris& ephemeris)
{
    TQX_GPSNav_s record;
    TQX_init_GPSNav(&record);
    fillLegacy(record, epoch, satellite, ephemeris);
    log.add(epoch, record, TQX_encode_GPSNav);
}

void addQzss(BlockLog& log, const Epoch& epoch, const Satellite& satellite,
             const KeplerEphemeris& ephemeris)
{
    TQX_QZSNav_s record;
    TQX_init_QZSNav(&record);
    fillLegacy(record, epoch, satellite, ephemeris);
    log.add(epoch, record, TQX_encode_QZSNav);
}

/// The message on L5 and S.
void addNavIc(BlockLog& log, const Epoch& epoch, const Satellite& satellite,
              const KeplerEphemeris& ephemeris)
{
    TQX_NavICLNav_s record;
    TQX_init_NavICLNav(&record);
    fillOrbit(record, ephemeris);
    fillWeeks(record, ephemeris, SystemTime(System::NavIc, epoch.time));
    record.PRN = satellite.getSvid();
    record.Source = 0;
    record.Flags = 0;
    record.IODEC = static_cast<uint8_t>(ephemeris.issue);
    record.T_gd = static_cast<float>(satellite.getGroupDelays()[0]);
    record.SQRT_A = ephemeris.elements.sqrtA;
    log.add(epoch, record, TQX_encode_NavICLNav);
}

/// The clock of F/NAV is that of E1 with E5a, the clock of I/NAV that of E1 with E5b.
void addGalileo(BlockLog& log, const Epoch& epoch, const Satellite& satellite,
                KeplerEphemeris ephemeris, bool isInav)
{
    constexpr uint16_t accuracy = 3120; // millimetres
    const auto [withE5a, withE5b] = satellite.getGroupDelays();
    const SystemTime sent(System::Galileo, epoch.time);
    if (!isInav)
        ephemeris.clockBias = rounded(ephemeris.clockBias + withE5a - withE5b, 0x1p-34);
    TQX_GALNav_s record;
    TQX_init_GALNav(&record);
    fillOrbit(record, ephemeris);
    fillWeeks(record, ephemeris, sent);
    record.Revision = 1;
    record.SVID = satellite.getSvid();
    record.Source = isInav ? 1 : 0;
    record.IODnav = static_cast<uint16_t>(ephemeris.issue);
    record.SISA_E1E5a = accuracy;
    record.SISA_E1E5b = accuracy;
    record.t_tm = static_cast<uint32_t>(sent.second) / 30 * 30000;
    record.BGD_E1E5a = static_cast<float>(withE5a);
    record.BGD_E1E5b = static_cast<float>(withE5b);
    record.SQRT_A = ephemeris.elements.sqrtA;
    record.t_auth = 0xffffffff;
    log.add(epoch, record, TQX_encode_GALNav);
}

void addBeiDou(BlockLog& log, const Epoch& epoch, const Satellite& satellite,
               const KeplerEphemeris& ephemeris)
{
    const SystemTime sent(System::BeiDou, epoch.time);
    TQX_BDSNav_s record;
    TQX_init_BDSNav(&record);
    fillOrbit(record, ephemeris);
    fillWeeks(record, ephemeris, sent);
    record.PRN = satellite.getSvid();
    record.AODC = 1;
    record.AODE = 1;
    record.T_gd1 = static_cast<float>(satellite.getGroupDelays()[0]);
    record.T_gd2 = 0;
    record.t_tm = static_cast<uint32_t>(sent.second) / 30 * 30000;
    record.SQRT_A = ephemeris.elements.sqrtA;
    log.add(epoch, record, TQX_encode_BDSNav);
}

/// The message of B2b, which has its group delay.
void addBeiDouB2b(BlockLog& log, const Epoch& epoch, const Satellite& satellite,
                  const KeplerEphemeris& ephemeris)
{
    const SystemTime sent(System::BeiDou, epoch.time);
    const bool isHigh = satellite.isGeosynchronous();
    const double sqrtA = ephemeris.elements.sqrtA;
    TQX_BDSCNav3_s record;
    TQX_init_BDSCNav3(&record);
    fillOrbit(record, ephemeris);
    record.PRN = satellite.getSvid();
    record.SatType = isHigh ? 2 : 3;
    record.WN = sent.week;
    record.t_tm10 = static_cast<uint32_t>(sent.second) * 1000;
    record.t_tm30 = record.t_tm10 / 2000 * 2000;
    record.t_op = ephemeris.toe;
    record.T_gd_B2bI = static_cast<float>(satellite.getGroupDelays()[1]);
    record.DEL_A = sqrtA * sqrtA - (isHigh ? 42162200 : 27906100);
    record.A_DOT = 0;
    record.DEL_N_DOT = 0;
    log.add(epoch, record, TQX_encode_BDSCNav3);
}

} // namespace

/// Position, velocity and acceleration in the steps of the message.
void addSbasEphemeris(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    constexpr double step = 1; // seconds
    const double reference = sbasReference(epoch.time);
    const auto positionAt = [&satellite](double time) {
        return pointAt(satellite.elementsAt(time), earthModel(System::Sbas), 0).position;
    };
    const Vector before = positionAt(reference - step);
    const Vector here = positionAt(reference);
    const Vector after = positionAt(reference + step);
    const Vector velocity = (after - before) * (0.5 / step);
    const Vector acceleration = (after - here - (here - before)) * (1 / (step * step));
    TQX_GEONav_s record;
    TQX_init_GEONav(&record);
    record.PRN = satellite.getSvid();
    record.URA = 0;
    record.t_0 = static_cast<uint32_t>(SystemTime(System::Sbas, reference).second) % secondsPerDay;
    record.XG = rounded(here.x, 0.08);
    record.YG = rounded(here.y, 0.08);
    record.ZG = rounded(here.z, 0.4);
    record.XGDot = static_cast<float>(rounded(velocity.x, 0.000625));
    record.YGDot = static_cast<float>(rounded(velocity.y, 0.000625));
    record.ZGDot = static_cast<float>(rounded(velocity.z, 0.004));
    record.XGDotDot = static_cast<float>(rounded(acceleration.x, 0.0000125));
    record.YGDotDot = static_cast<float>(rounded(acceleration.y, 0.0000125));
    record.ZGDotDot = static_cast<float>(rounded(acceleration.z, 0.0000625));
    record.a_Gf0 = static_cast<float>(rounded(satellite.clockAt(reference), 0x1p-31));
    record.a_Gf1 = static_cast<float>(rounded(satellite.getClockDrift(), 0x1p-40));
    log.add(epoch, record, TQX_encode_GEONav);
}

void addKeplerEphemeris(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    const KeplerEphemeris ephemeris = keplerEphemeris(satellite, epoch.time);
    switch (satellite.getSystem()) {
    case System::Gps:
        addGps(log, epoch, satellite, ephemeris);
        break;
    case System::Galileo:
        addGalileo(log, epoch, satellite, ephemeris, true);
        addGalileo(log, epoch, satellite, ephemeris, false);
        break;
    case System::BeiDou:
        addBeiDou(log, epoch, satellite, ephemeris);
        addBeiDouB2b(log, epoch, satellite, ephemeris);
        break;
    case System::Qzss:
        addQzss(log, epoch, satellite, ephemeris);
        break;
    case System::NavIc:
        addNavIc(log, epoch, satellite, ephemeris);
        break;
    case System::Glonass:
    case System::Sbas:
        break;
    }
}

} // namespace tqx::simulation
