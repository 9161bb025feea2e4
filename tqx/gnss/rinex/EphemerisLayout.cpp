// The records of ephemerides as the tables of RINEX 3.05 and 4.02 list them.

#include "tqx/gnss/rinex/EphemerisLayout.h"

namespace tqx::rinex
{

namespace
{

using E = Ephemeris;
using Fields = std::vector<LayoutField>;

constexpr LayoutField blank = {};
constexpr LayoutField zero = {nullptr, 0}; ///< as in most files; some readers expect it
constexpr double kilo = 1e-3;              // kilometres, from metres

Fields joined(Fields first, const Fields& rest)
{
    first.insert(first.end(), rest.begin(), rest.end());
    return first;
}

/// The first numbers of legacy messages, up to the rate of inclination.
Fields kepler(const Fields& rest)
{
    return joined({{&E::af0}, {&E::af1},    {&E::af2},      {&E::iode},  //
                   {&E::crs}, {&E::deltaN}, {&E::m0},       {&E::cuc},   //
                   {&E::e},   {&E::cus},    {&E::sqrtA},    {&E::toe},   //
                   {&E::cic}, {&E::omega0}, {&E::cis},      {&E::i0},    //
                   {&E::crc}, {&E::omega},  {&E::omegaDot}, {&E::iDot}}, //
                  rest);
}

const Fields legacy = kepler({
    {&E::codesOnL2},
    {&E::week},
    {&E::l2Data},
    {&E::accuracy}, //
    {&E::health},
    {&E::delay1},
    {&E::iodc},
    {&E::transmitted}, //
    {&E::fit},
});

const Fields galileo = kepler({
    {&E::sources},
    {&E::week},
    blank,
    {&E::accuracy}, //
    {&E::health},
    {&E::delay1},
    {&E::delay2},
    {&E::transmitted},
});

const Fields beiDou = kepler({
    zero,
    {&E::week},
    zero,
    {&E::accuracy}, //
    {&E::health},
    {&E::delay1},
    {&E::delay2},
    {&E::transmitted}, //
    {&E::iodc},
});

const Fields navic = kepler({
    blank,
    {&E::week},
    blank,
    {&E::accuracy}, //
    {&E::health},
    {&E::delay1},
    blank,
    {&E::transmitted},
});

const Fields glonass = {
    {&E::af0},      {&E::af1},           {&E::transmitted}, {&E::x, kilo}, //
    {&E::vx, kilo}, {&E::ax, kilo},      {&E::health},      {&E::y, kilo}, //
    {&E::vy, kilo}, {&E::ay, kilo},      {&E::channel},     {&E::z, kilo}, //
    {&E::vz, kilo}, {&E::az, kilo},      {&E::age},         {&E::status},  //
    {&E::delay1},   {&E::accuracyIndex}, {&E::healthFlags},
};

// Blocks lack the issue of data, which is last.
const Fields sbas = {
    {&E::af0},      {&E::af1},      {&E::transmitted}, {&E::x, kilo}, //
    {&E::vx, kilo}, {&E::ax, kilo}, {&E::health},      {&E::y, kilo}, //
    {&E::vy, kilo}, {&E::ay, kilo}, {&E::accuracy},    {&E::z, kilo}, //
    {&E::vz, kilo}, {&E::az, kilo}, {&E::iode},
};

/// The first numbers of civil messages, up to the correction to the rate of the mean motion.
Fields civil(const Fields& rest, LayoutField sixth)
{
    return joined(
        {
            {&E::af0},       {&E::af1},    {&E::af2},      {&E::aDot}, //
            {&E::crs},       {&E::deltaN}, {&E::m0},       {&E::cuc},  //
            {&E::e},         {&E::cus},    {&E::sqrtA},    sixth,      //
            {&E::cic},       {&E::omega0}, {&E::cis},      {&E::i0},   //
            {&E::crc},       {&E::omega},  {&E::omegaDot}, {&E::iDot}, //
            {&E::deltaNDot},
        },
        rest);
}

/// The civil messages of GPS and QZSS up to the fourth correction between signals.
Fields gpsCivil(const Fields& rest)
{
    return civil(joined({{&E::uraNed0},
                         {&E::uraNed1},
                         {&E::uraEd},
                         {&E::health},
                         {&E::delay1},
                         {&E::uraNed2},
                         {&E::isc1},
                         {&E::isc2},
                         {&E::isc3},
                         {&E::isc4}},
                        rest),
                 {&E::top});
}

const Fields cnav = gpsCivil({{&E::transmitted}, {&E::weekOp}});

const Fields cnav2 =
    gpsCivil({{&E::isc5}, {&E::isc6}, blank, blank, {&E::transmitted}, {&E::weekOp}});

/// The civil messages of BeiDou up to the corrections to the clock.
Fields beiDouCivil(const Fields& rest)
{
    return civil(joined({{&E::satelliteType},
                         {&E::top},
                         {&E::sisaiOe},
                         {&E::sisaiOcb},
                         {&E::sisaiOc1},
                         {&E::sisaiOc2}},
                        rest),
                 {&E::toe});
}

const Fields beiDouCnav12 = beiDouCivil({{&E::isc1},
                                         {&E::isc2},
                                         {&E::delay1},
                                         {&E::delay2},
                                         {&E::sismai},
                                         {&E::health},
                                         {&E::integrity},
                                         {&E::iodc},
                                         {&E::transmitted},
                                         blank,
                                         blank,
                                         {&E::iode}});

const Fields beiDouCnav3 =
    beiDouCivil({{&E::sismai}, {&E::health}, {&E::integrity}, {&E::delay1}, {&E::transmitted}});

} // namespace

const std::vector<LayoutField>& layoutOf(char system, NavigationMessage message)
{
    switch (message) {
    case NavigationMessage::Inav:
    case NavigationMessage::Fnav:
        return galileo;
    case NavigationMessage::D1:
    case NavigationMessage::D2:
        return beiDou;
    case NavigationMessage::Fdma:
        return glonass;
    case NavigationMessage::Sbas:
        return sbas;
    case NavigationMessage::Cnav:
        return cnav;
    case NavigationMessage::Cnv1:
        return beiDouCnav12;
    case NavigationMessage::Cnv2:
        return system == 'C' ? beiDouCnav12 : cnav2;
    case NavigationMessage::Cnv3:
        return beiDouCnav3;
    default:
        return system == 'I' ? navic : legacy;
    }
}

} // namespace tqx::rinex
