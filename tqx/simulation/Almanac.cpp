#include "tqx/simulation/Almanac.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

namespace
{

/// Sidereal angle of Greenwich, degrees, at the start of `almanacWeek`: 2026-01-04, 9,499.5 days
/// after J2000.
double greenwich()
{
    return std::fmod(280.46061837 + 360.98564736629 * 9499.5, 360);
}

struct Slot {
    double ascendingNode; ///< right ascension
    double latitudeArgument;
};

/// Baseline 24-slot constellation with its three expanded slots (GPS Standard Positioning Service
/// Performance Standard), and four spares ahead of arbitrary slots.
constexpr Slot gpsSlots[] = {
    {272.847, 268.126}, {272.847, 161.786}, {272.847, 11.676},  {272.847, 41.806},
    {332.847, 94.916},  {332.847, 66.356},  {332.847, 173.336}, {332.847, 309.976},
    {332.847, 204.376}, {32.847, 111.876},  {32.847, 11.796},   {32.847, 339.666},
    {32.847, 241.556},  {92.847, 135.226},  {92.847, 282.676},  {92.847, 257.976},
    {92.847, 35.136},   {92.847, 167.356},  {152.847, 197.046}, {152.847, 302.596},
    {152.847, 66.066},  {152.847, 333.686}, {212.847, 238.886}, {212.847, 0.456},
    {212.847, 334.016}, {212.847, 105.206}, {212.847, 135.346}, {272.847, 286},
    {32.847, 130},      {92.847, 55},       {152.847, 215},
};

/// Channels by slot, as the constellation has used them for years; satellites that face each other
/// in a plane share one.
constexpr int8_t glonassChannels[] = {1,  -4, 5, 6,  1, -4, 5, 6, -2, -7, 0, -1,
                                      -2, -7, 0, -1, 4, -3, 3, 2, 4,  -3, 3, 2};

/// A Walker pattern of 24 satellites in three planes with a phase of 1: the planes are 120 degrees
/// apart, the satellites of a plane 45, and a plane is 15 degrees ahead of the one before.
struct Walker {
    System system;
    double semiMajorAxis;
    double inclination;
    double firstNode;
    double firstArgument;
};

/// GLONASS: interface document of the L1 and L2 signals, edition 5.1 (11 h 15 min 44 s, 64.8
/// degrees). Galileo: Open Service Service Definition Document (29,600.318 km, 56 degrees). BeiDou:
/// Open Service Performance Standard 3.0 (21,528 km high, 55 degrees).
constexpr Walker walkers[] = {
    {System::Glonass, 25508200, 64.8, 215.25, 145.437},
    {System::Galileo, 29600318, 56, 317.632, 15.153},
    {System::BeiDou, 27906100, 55, 0, 0},
};

/// BeiDou numbers of the medium orbits: C19 to C30, C32 to C37, C41 to C46.
uint8_t numberOf(System system, unsigned place)
{
    unsigned number = place + 1;
    if (system == System::BeiDou)
        number = place < 12 ? 19 + place : place < 18 ? 20 + place : 23 + place;
    return static_cast<uint8_t>(number);
}

void addWalker(std::vector<NominalSatellite>& satellites, const Walker& walker)
{
    for (unsigned place = 0; place < 24; ++place) {
        const unsigned plane = place / 8;
        const int8_t channel = walker.system == System::Glonass ? glonassChannels[place] : int8_t{};
        satellites.push_back({walker.system, numberOf(walker.system, place), channel,
                              walker.semiMajorAxis, walker.inclination,
                              walker.firstNode + 120 * plane - greenwich(),
                              walker.firstArgument + 45 * (place % 8) + 15 * plane});
    }
}

/// Three satellites, 120 degrees apart, on one track over the ground that crosses the equator at
/// 118 degrees east.
void addGeosynchronous(std::vector<NominalSatellite>& satellites)
{
    for (unsigned i = 0; i < 3; ++i) {
        const double argument = 120 * i;
        satellites.push_back({System::BeiDou, static_cast<uint8_t>(38 + i), 0, 42164200, 55,
                              118 - argument, argument});
    }
}

/// A satellite that stays above one place of the equator, or goes round it once a day on a track
/// over the ground that crosses the equator there.
struct Stationary {
    System system;
    uint8_t number;
    double longitude;
    double inclination;
    double argument;
};

/// As announced by their operators, but on circles.
constexpr Stationary stationary[] = {
    {System::Qzss, 1, 139, 41, 0},     {System::Qzss, 2, 139, 41, 120},
    {System::Qzss, 3, 139, 41, 240},   {System::Qzss, 7, 127, 0, 0},
    {System::NavIc, 2, 55, 29, 0},     {System::NavIc, 9, 55, 29, 180},
    {System::NavIc, 4, 111.75, 29, 0}, {System::NavIc, 5, 111.75, 29, 180},
    {System::NavIc, 3, 83, 0, 0},      {System::NavIc, 6, 32.5, 0, 0},
    {System::NavIc, 7, 129.5, 0, 0},   {System::Sbas, 23, 31.5, 0, 0},
    {System::Sbas, 27, 55, 0, 0},      {System::Sbas, 28, 83, 0, 0},
    {System::Sbas, 31, -117, 0, 0},    {System::Sbas, 33, -129, 0, 0},
    {System::Sbas, 35, -125, 0, 0},    {System::Sbas, 36, 5, 0, 0},
    {System::Sbas, 37, 127, 0, 0},     {System::Sbas, 38, -107.3, 0, 0},
    {System::Sbas, 43, 110.5, 0, 0},
};

} // namespace

std::vector<NominalSatellite> nominalSatellites(unsigned systems)
{
    std::vector<NominalSatellite> satellites;
    for (const Slot& slot : gpsSlots) {
        satellites.push_back({System::Gps, static_cast<uint8_t>(satellites.size() + 1), 0, 26559700,
                              55, slot.ascendingNode - greenwich(), slot.latitudeArgument});
    }
    for (const Walker& walker : walkers)
        addWalker(satellites, walker);
    addGeosynchronous(satellites);
    for (const Stationary& each : stationary) {
        satellites.push_back({each.system, each.number, 0, 42164200, each.inclination,
                              each.longitude - each.argument, each.argument});
    }
    satellites.erase(std::remove_if(satellites.begin(), satellites.end(),
                                    [systems](const NominalSatellite& satellite) {
                                        return (systems >> indexOf(satellite.system) & 1U) == 0;
                                    }),
                     satellites.end());
    return satellites;
}

} // namespace tqx::simulation
