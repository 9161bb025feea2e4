// Ephemerides that are Kepler orbits. Names, units and references are those of the public interface
// documents: IS-GPS-200, IS-GPS-705, IS-GPS-800, IS-QZSS-PNT, Galileo OS SIS ICD, BDS-SIS-ICD and
// the SPS documents of NavIC.

#include "tqx/gnss/navigation/Adapters.h"
#include "tqx/gnss/navigation/Weeks.h"

#include "TQX_codec.h"

#include <cmath>

namespace tqx::navigation
{

using namespace Kor::MessageApi;

namespace
{

constexpr double semicircle = 3.1415926535898; // as defined by the interface documents
constexpr double noValue = -2e10;

template<typename Record>
const Record& as(const void* record)
{
    return *static_cast<const Record*>(record);
}

SatelliteId satelliteOr0(uint8_t svid)
{
    return satelliteOf(svid).value_or(SatelliteId());
}

double angle(double value)
{
    return available(value) * semicircle;
}

/// Fields with the same names in all Kepler ephemerides.
template<typename Record>
void fillOrbit(Ephemeris& e, const Record& record)
{
    e.af0 = available(record.a_f0);
    e.af1 = available(record.a_f1);
    e.af2 = available(record.a_f2);
    e.toe = record.t_oe;
    e.e = available(record.e);
    e.i0 = angle(record.i_0);
    e.omega0 = angle(record.OMEGA_0);
    e.omega = angle(record.omega);
    e.m0 = angle(record.M_0);
    e.deltaN = angle(record.DEL_N);
    e.iDot = angle(record.IDOT);
    e.cuc = available(record.C_uc);
    e.cus = available(record.C_us);
    e.crc = available(record.C_rc);
    e.crs = available(record.C_rs);
    e.cic = available(record.C_ic);
    e.cis = available(record.C_is);
}

/// Weeks of GPS, or aligned to them, and the sending time according to the block's time.
template<typename Record>
void fillWeeks(Ephemeris& e, const Record& record)
{
    e.week = weekNear(record.WNt_oe, record.WNc);
    e.reference = millisOf(weekNear(record.WNt_oc, record.WNc), record.t_oc);
    e.transmitted = (record.WNc - e.week) * secondsPerWeek + std::floor(record.TOW * 1e-3);
}

/// Legacy messages of GPS and QZSS.
template<typename Record>
void fillLegacy(Ephemeris& e, const Record& record)
{
    e.satellite = satelliteOr0(record.PRN);
    fillOrbit(e, record);
    fillWeeks(e, record);
    e.sqrtA = available(record.SQRT_A);
    e.omegaDot = angle(record.OMEGADOT);
    e.iode = record.IODE2;
    e.iodc = record.IODC;
    e.accuracy = accuracyOf(record.URA);
    e.health = record.health;
    e.delay1 = available(record.T_gd);
    e.codesOnL2 = record.CAorPonL2;
    e.l2Data = record.L2DataFlag;
}

/// Hours over which the ephemeris was fitted (IS-GPS-200, 20.3.4.4).
double fitOf(unsigned flag, unsigned iodc)
{
    struct Range {
        unsigned from;
        unsigned to;
        double hours;
    };
    static constexpr Range longer[] = {{240, 247, 8},  {248, 255, 14}, {496, 496, 14},
                                       {497, 503, 26}, {504, 510, 50}, {511, 511, 74},
                                       {752, 756, 74}, {757, 757, 98}, {1021, 1023, 26}};
    if (flag == 0)
        return 4;
    for (const Range& range : longer) {
        if (iodc >= range.from && iodc <= range.to)
            return range.hours;
    }
    return 6;
}

/// Civil messages of GPS and QZSS. The orbit and the clock have one reference time. `axis`: the
/// semi-major axis that differences refer to.
template<typename Record>
void fillCivil(Ephemeris& e, const Record& record, double axis, double referenceSecond)
{
    constexpr double referenceRate = -2.6e-9; // semicircles per second
    e.satellite = satelliteOr0(record.PRN);
    fillOrbit(e, record);
    // The week of t_oe is not sent: it is the one that puts t_oe nearest to the message.
    const double ahead = record.t_oe - record.TOW * 1e-3;
    e.week = record.WNc - std::round(ahead / secondsPerWeek);
    e.reference = millisOf(e.week, referenceSecond);
    e.transmitted = (record.WNc - e.week) * secondsPerWeek + std::floor(record.TOW * 1e-3);
    e.sqrtA = std::sqrt(axis + record.DEL_A);
    e.aDot = record.A_DOT;
    e.deltaNDot = angle(record.DEL_N_DOT);
    e.omegaDot = (referenceRate + record.DEL_OMEGADOT) * semicircle;
    e.top = record.t_op;
    e.weekOp = weekNear(record.WN_OP, record.WNc, 256);
    e.uraEd = record.URA_ED;
    e.uraNed0 = record.URA_NED0;
    e.uraNed1 = record.URA_NED1;
    e.uraNed2 = record.URA_NED2;
    e.delay1 = available(record.T_gd);
    e.isc1 = available(record.ISC_L1CA);
}

template<typename Record>
void fillCnav(Ephemeris& e, const Record& record, double axis)
{
    fillCivil(e, record, axis, record.t_oc);
    e.health = record.L1Unhealthy | record.L2Unhealthy << 1U | record.L5Unhealthy << 2U;
    e.isc2 = available(record.ISC_L2C);
    e.isc3 = available(record.ISC_L5I5);
    e.isc4 = available(record.ISC_L5Q5);
}

template<typename Record>
void fillCnav2(Ephemeris& e, const Record& record, double axis)
{
    fillCivil(e, record, axis, record.t_oe);
    e.health = record.L1CUnhealthy;
    e.isc5 = available(record.ISC_L1CD);
    e.isc6 = available(record.ISC_L1CP);
    e.transmitted = (record.WNc - e.week) * secondsPerWeek + std::floor(record.t_tm * 1e-3);
}

constexpr double gpsAxis = 26559710;
constexpr double qzssAxis = 42164200;

template<typename Record>
void fillBeiDouCivil(Ephemeris& e, const Record& record)
{
    constexpr uint8_t medium = 3;
    e.satellite = satelliteOr0(record.PRN);
    fillOrbit(e, record);
    // BDT is 14 seconds behind GPS time.
    const double now = record.TOW * 1e-3 - 14;
    e.week = beiDouWeek(noWeek, record.WNc) - std::round((record.t_oe - now) / secondsPerWeek);
    const double clockWeek =
        beiDouWeek(noWeek, record.WNc) - std::round((record.t_oc - now) / secondsPerWeek);
    e.reference = millisOf(clockWeek + beiDouWeekZero, record.t_oc);
    e.transmitted = (record.WNc - beiDouWeekZero - e.week) * secondsPerWeek + std::floor(now);
    e.sqrtA = std::sqrt((record.SatType == medium ? 27906100 : 42162200) + record.DEL_A);
    e.aDot = record.A_DOT;
    e.deltaNDot = angle(record.DEL_N_DOT);
    e.omegaDot = angle(record.OMEGADOT);
    e.top = record.t_op;
    e.satelliteType = record.SatType;
    e.sisaiOe = record.SISAI_oe;
    e.sisaiOcb = record.SISAI_ocb;
    e.sisaiOc1 = record.SISAI_oc1;
    e.sisaiOc2 = record.SISAI_oc2;
    e.sismai = record.SISMAI;
    e.health = record.HS;
    e.integrity = record.DIF << 2U | record.SIF << 1U | record.AIF;
}

/// The messages of B1C and B2a.
template<typename Record>
void fillBeiDouCnav12(Ephemeris& e, const Record& record)
{
    fillBeiDouCivil(e, record);
    e.iode = record.IODE;
    e.iodc = record.IODC;
    e.delay1 = available(record.T_gd_B1Cp);
    e.delay2 = available(record.T_gd_B2ap);
}

} // namespace

double available(double value)
{
    return value == noValue ? Ephemeris::none : value;
}

double accuracyOf(unsigned index)
{
    static constexpr double metres[] = {2, 2.8, 4, 5.7, 8, 11.3, 16};
    if (index < 7)
        return metres[index];
    return index >= 15 ? 8192 : static_cast<double>(1U << (index - 2));
}

void fillGps(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_GPSNav_s>(block);
    fillLegacy(e, record);
    e.fit = fitOf(record.FitIntFlg, record.IODC);
}

void fillQzss(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_QZSNav_s>(block);
    fillLegacy(e, record);
    e.fit = record.FitIntFlg;
}

void fillGpsCnav(Ephemeris& e, const void* block)
{
    fillCnav(e, as<TQX_GPSCNav_s>(block), gpsAxis);
}

void fillQzssCnav(Ephemeris& e, const void* block)
{
    fillCnav(e, as<TQX_QZSCNav_s>(block), qzssAxis);
}

void fillGpsCnav2(Ephemeris& e, const void* block)
{
    fillCnav2(e, as<TQX_GPSCNav2_s>(block), gpsAxis);
}

void fillQzssCnav2(Ephemeris& e, const void* block)
{
    fillCnav2(e, as<TQX_QZSCNav2_s>(block), qzssAxis);
}

void fillGalileo(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_GALNav_s>(block);
    const bool isInav = record.Source == 1;
    e.satellite = satelliteOr0(record.SVID);
    e.message = isInav ? NavigationMessage::Inav : NavigationMessage::Fnav;
    fillOrbit(e, record);
    fillWeeks(e, record);
    e.transmitted = (weekNear(record.WN, record.WNc) - e.week) * secondsPerWeek +
                    std::floor(record.t_tm * 1e-3);
    e.sqrtA = available(record.SQRT_A);
    e.omegaDot = angle(record.OMEGADOT);
    e.iode = record.IODnav;
    // Bits of the public documents: 0 E1-B, 1 E5a-I, 2 E5b-I, 8 clock of E1 with E5a, 9 with E5b.
    e.sources = isInav ? 1 + 4 + 512 : 2 + 256;
    const uint16_t accuracy = isInav ? record.SISA_E1E5b : record.SISA_E1E5a;
    e.accuracy = accuracy == 65535 ? -1 : accuracy * 1e-3;
    const unsigned e1 = record.DVS_E1B | unsigned{record.HS_E1B} << 1U;
    const unsigned e5a = record.DVS_E5a | unsigned{record.HS_E5a} << 1U;
    const unsigned e5b = record.DVS_E5b | unsigned{record.HS_E5b} << 1U;
    e.health = isInav ? e1 | e5b << 6U : e5a << 3U;
    e.delay1 = available(record.BGD_E1E5a);
    e.delay2 = isInav ? available(record.BGD_E1E5b) : 0;
}

void fillBeiDou(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_BDSNav_s>(block);
    e.satellite = satelliteOr0(record.PRN);
    e.message = record.Source == 1 ? NavigationMessage::D2 : NavigationMessage::D1;
    fillOrbit(e, record);
    e.week = beiDouWeek(record.WNt_oe, record.WNc);
    e.reference = millisOf(beiDouWeek(record.WNt_oc, record.WNc) + beiDouWeekZero, record.t_oc);
    e.transmitted = (beiDouWeek(record.WN, record.WNc) - e.week) * secondsPerWeek +
                    std::floor(record.t_tm * 1e-3);
    e.sqrtA = available(record.SQRT_A);
    e.omegaDot = angle(record.OMEGADOT);
    e.iode = record.AODE;
    e.iodc = record.AODC;
    e.accuracy = accuracyOf(record.URA);
    e.health = record.SatH1;
    e.delay1 = available(record.T_gd1);
    e.delay2 = available(record.T_gd2);
}

void fillBeiDouCnav1(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_BDSCNav1_s>(block);
    fillBeiDouCnav12(e, record);
    e.isc1 = available(record.ISC_B1Cd);
}

void fillBeiDouCnav2(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_BDSCNav2_s>(block);
    fillBeiDouCnav12(e, record);
    e.isc2 = available(record.ISC_B2ad);
}

void fillBeiDouCnav3(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_BDSCNav3_s>(block);
    fillBeiDouCivil(e, record);
    e.delay1 = available(record.T_gd_B2bI);
}

bool isNavicOnL1(const DecodedBlock& decoded)
{
    constexpr uint8_t legacy = 0;
    const auto& header = as<TQX_MainHeader_s>(decoded.record);
    return header.korcg_type == TQX_recordTypeOf<TQX_NavICLNav_s> &&
           as<TQX_NavICLNav_s>(decoded.record).Source != legacy;
}

void fillNavic(Ephemeris& e, const void* block)
{
    const auto& record = as<TQX_NavICLNav_s>(block);
    e.satellite = satelliteOr0(record.PRN);
    fillOrbit(e, record);
    fillWeeks(e, record);
    e.sqrtA = available(record.SQRT_A);
    e.omegaDot = angle(record.OMEGADOT);
    e.iode = record.IODEC;
    e.accuracy = accuracyOf(record.URA);
    e.health = record.L5Unhealthy << 1U | record.SUnhealthy;
    e.delay1 = available(record.T_gd);
}

} // namespace tqx::navigation
