#include "tqx/gnss/navigation/Ephemeris.h"

#include "tqx/gnss/navigation/Adapters.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace tqx
{

namespace
{

/// A block and the function that reads it.
struct Adapter {
    uint16_t number;
    NavigationMessage message; ///< unless the block names another
    void (*fill)(Ephemeris&, const void*);
};

constexpr Adapter adapters[] = {
    {4002, NavigationMessage::Inav, navigation::fillGalileo},
    {4004, NavigationMessage::Fdma, navigation::fillGlonass},
    {4042, NavigationMessage::Cnav, navigation::fillGpsCnav},
    {4081, NavigationMessage::D1, navigation::fillBeiDou},
    {4095, NavigationMessage::Lnav, navigation::fillQzss},
    {4251, NavigationMessage::Cnv1, navigation::fillBeiDouCnav1},
    {4252, NavigationMessage::Cnv2, navigation::fillBeiDouCnav2},
    {4253, NavigationMessage::Cnv3, navigation::fillBeiDouCnav3},
    {4254, NavigationMessage::Lnav, navigation::fillNavic},
    {4258, NavigationMessage::Cnv2, navigation::fillGpsCnav2},
    {4259, NavigationMessage::Cnav, navigation::fillQzssCnav},
    {4260, NavigationMessage::Cnv2, navigation::fillQzssCnav2},
    {5891, NavigationMessage::Lnav, navigation::fillGps},
    {5896, NavigationMessage::Sbas, navigation::fillSbas},
};

const Adapter* adapterOf(uint16_t number)
{
    const auto* const found =
        std::find_if(std::begin(adapters), std::end(adapters),
                     [number](const Adapter& adapter) { return adapter.number == number; });
    return found == std::end(adapters) ? nullptr : found;
}

} // namespace

const char* nameOf(NavigationMessage message)
{
    static constexpr const char* names[] = {"LNAV", "CNAV", "CNV1", "CNV2", "CNV3", "INAV",
                                            "FNAV", "D1",   "D2",   "FDMA", "SBAS"};
    return names[static_cast<unsigned>(message)];
}

bool Ephemeris::wants(uint16_t blockNumber)
{
    return adapterOf(blockNumber) != nullptr;
}

std::optional<Ephemeris> Ephemeris::of(const DecodedBlock& decoded)
{
    const Adapter* const adapter = adapterOf(decoded.block.getNumber());
    const auto time = gnssMillis(decoded.getHeader().TOW, decoded.getHeader().WNc);
    if (!adapter || !time || navigation::isNavicOnL1(decoded))
        return std::nullopt;
    Ephemeris ephemeris;
    ephemeris.received = *time;
    ephemeris.message = adapter->message;
    adapter->fill(ephemeris, decoded.record);
    if (ephemeris.satellite.number == 0)
        return std::nullopt;
    return ephemeris;
}

const std::vector<EphemerisParameter>& ephemerisParameters()
{
    using E = Ephemeris;
    static const std::vector<EphemerisParameter> list = {
        {"a_f0", "second", &E::af0},
        {"a_f1", "secondpersecond", &E::af1},
        {"a_f2", "secondpersecondsquared", &E::af2},
        {"IODE", "", &E::iode},
        {"IODC", "", &E::iodc},
        {"t_oe", "second", &E::toe},
        {"WNt_oe", "week", &E::week},
        {"SQRT_A", "metersqrt", &E::sqrtA},
        {"e", "", &E::e},
        {"i_0", "radian", &E::i0},
        {"OMEGA_0", "radian", &E::omega0},
        {"omega", "radian", &E::omega},
        {"M_0", "radian", &E::m0},
        {"DEL_N", "radianpersecond", &E::deltaN},
        {"OMEGADOT", "radianpersecond", &E::omegaDot},
        {"IDOT", "radianpersecond", &E::iDot},
        {"C_uc", "radian", &E::cuc},
        {"C_us", "radian", &E::cus},
        {"C_rc", "meter", &E::crc},
        {"C_rs", "meter", &E::crs},
        {"C_ic", "radian", &E::cic},
        {"C_is", "radian", &E::cis},
        {"A_DOT", "meterpersecond", &E::aDot},
        {"DEL_N_DOT", "radianpersecondsquared", &E::deltaNDot},
        {"X", "meter", &E::x},
        {"Y", "meter", &E::y},
        {"Z", "meter", &E::z},
        {"Vx", "meterpersecond", &E::vx},
        {"Vy", "meterpersecond", &E::vy},
        {"Vz", "meterpersecond", &E::vz},
        {"Ax", "meterpersecondsquared", &E::ax},
        {"Ay", "meterpersecondsquared", &E::ay},
        {"Az", "meterpersecondsquared", &E::az},
        {"Health", "", &E::health},
        {"Accuracy", "meter", &E::accuracy},
        {"Delay1", "second", &E::delay1},
        {"Delay2", "second", &E::delay2},
        {"ISC1", "second", &E::isc1},
        {"ISC2", "second", &E::isc2},
        {"ISC3", "second", &E::isc3},
        {"ISC4", "second", &E::isc4},
        {"ISC5", "second", &E::isc5},
        {"ISC6", "second", &E::isc6},
        {"Sources", "", &E::sources},
        {"CAorPonL2", "", &E::codesOnL2},
        {"L2DataFlag", "", &E::l2Data},
        {"Fit", "", &E::fit},
        {"Channel", "", &E::channel},
        {"Age", "day", &E::age},
        {"Status", "", &E::status},
        {"AccuracyIndex", "", &E::accuracyIndex},
        {"HealthFlags", "", &E::healthFlags},
        {"t_op", "second", &E::top},
        {"WN_OP", "week", &E::weekOp},
        {"SatType", "", &E::satelliteType},
        {"URA_ED", "", &E::uraEd},
        {"URA_NED0", "", &E::uraNed0},
        {"URA_NED1", "", &E::uraNed1},
        {"URA_NED2", "", &E::uraNed2},
        {"SISAI_oe", "", &E::sisaiOe},
        {"SISAI_ocb", "", &E::sisaiOcb},
        {"SISAI_oc1", "", &E::sisaiOc1},
        {"SISAI_oc2", "", &E::sisaiOc2},
        {"SISMAI", "", &E::sismai},
        {"IntegrityFlags", "", &E::integrity},
        {"Transmitted", "second", &E::transmitted},
    };
    return list;
}

bool isSame(const Ephemeris& a, const Ephemeris& b)
{
    if (a.satellite != b.satellite || a.message != b.message || a.reference != b.reference)
        return false;
    const auto& parameters = ephemerisParameters();
    return std::all_of(parameters.begin(), parameters.end(), [&](const EphemerisParameter& p) {
        const double first = a.*p.member;
        const double second = b.*p.member;
        return p.member == &Ephemeris::transmitted || first == second ||
               (std::isnan(first) && std::isnan(second));
    });
}

} // namespace tqx
