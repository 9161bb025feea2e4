#include "Blocks.h"

#include <algorithm>
#include <cmath>

namespace tool
{

using namespace Kor::MessageApi;

namespace
{

constexpr double angleStep = 1e-11; // radians, well below a millimetre

float metres(double value)
{
    return static_cast<float>(rounded(value, 1e-4));
}

} // namespace

void addPosition(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr uint8_t standalone = 1;
    constexpr float notAvailable = -2e10F;
    constexpr uint8_t raimPassed = 1;
    const Solution& solution = receiver.getSolution();
    TQX_PVTGeodetic2_s record;
    TQX_init_PVTGeodetic2(&record);
    record.Revision = 2;
    record.Mode = standalone;
    record.Latitude = rounded(solution.position.latitude, angleStep);
    record.Longitude = rounded(solution.position.longitude, angleStep);
    record.Height = rounded(solution.position.height, 1e-4);
    record.Undulation = metres(Receiver::undulation);
    record.Vn = metres(solution.velocity.y);
    record.Ve = metres(solution.velocity.x);
    record.Vu = metres(solution.velocity.z);
    record.COG = notAvailable; // too slow for a course
    record.RxClkBias = rounded(solution.clockBias * 1e3, 1e-8);
    record.RxClkDrift = static_cast<float>(rounded(solution.clockDrift * 1e6, 1e-6));
    record.NrSV = static_cast<uint8_t>(receiver.getSights().size());
    record.ReferenceID = 65535;
    record.MeanCorrAge = 65535;
    for (const Sight& sight : receiver.getSights())
        for (const Signal& signal : sight.signals)
            record.SignalInfo |= 1U << signal.number;
    record.AlertFlag = raimPassed;
    record.Latency = static_cast<uint16_t>(steps(0.012, 1e-4));
    record.HAccuracy = static_cast<uint16_t>(steps(1.7, 0.01));
    record.VAccuracy = static_cast<uint16_t>(steps(2.3, 0.01));
    log.add(epoch, record, TQX_encode_PVTGeodetic2);
}

void addEphemeris(BlockLog& log, const Epoch& epoch, const Sight& sight)
{
    const Ephemeris& ephemeris = sight.ephemeris;
    TQX_GPSNav_s record;
    TQX_init_GPSNav(&record);
    record.PRN = sight.prn;
    record.WN = epoch.week;
    record.CAorPonL2 = 3;
    record.IODC = ephemeris.issue;
    record.IODE2 = static_cast<uint8_t>(ephemeris.issue);
    record.IODE3 = static_cast<uint8_t>(ephemeris.issue);
    record.T_gd = static_cast<float>(ephemeris.groupDelay);
    record.t_oc = ephemeris.toe;
    record.a_f1 = static_cast<float>(ephemeris.clockDrift);
    record.a_f0 = static_cast<float>(ephemeris.clockBias);
    record.M_0 = ephemeris.meanAnomaly;
    record.e = ephemeris.eccentricity;
    record.SQRT_A = ephemeris.sqrtA;
    record.t_oe = ephemeris.toe;
    record.OMEGA_0 = ephemeris.ascendingNode;
    record.i_0 = ephemeris.inclination;
    record.omega = ephemeris.perigee;
    record.OMEGADOT = static_cast<float>(ephemeris.nodeRate);
    record.WNt_oc = ephemeris.week;
    record.WNt_oe = ephemeris.week;
    log.add(epoch, record, TQX_encode_GPSNav);
}

} // namespace tool
