#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/Broadcast.h"
#include "tqx/simulation/GlonassAlmanacs.h"

#include <algorithm>

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr double degreesPerSemicircle = 180;

/// Reference time of the almanacs sent at a time; it changes every 12 hours.
double almanacReference(double time)
{
    constexpr double stretch = 43200;
    return std::floor(time / stretch) * stretch;
}

/// Fields with the same names in all almanacs, in the steps of their messages. `tilt` is the
/// inclination in semicircles that the almanac refers to.
template<typename Record>
void fill(Record& record, const Satellite& satellite, double time, double tilt)
{
    const double reference = almanacReference(time);
    const System system = satellite.getSystem();
    const SystemTime named(system, reference);
    const KeplerElements elements = satellite.elementsAt(reference);
    const auto value = [](double number, double step) {
        return static_cast<float>(rounded(number, step));
    };
    record.WN_a = named.week;
    record.t_oa = static_cast<uint32_t>(std::llround(named.second));
    record.e = value(elements.eccentricity, 0x1p-21);
    record.delta_i = value(elements.inclination - tilt, 0x1p-19);
    record.OMEGADOT = value(elements.nodeRate, 0x1p-38);
    record.OMEGA_0 = value(
        wrapped(elements.ascendingNode + earthModel(system).rotation / pi * named.second), 0x1p-23);
    record.omega = value(elements.perigee, 0x1p-23);
    record.M_0 = value(elements.meanAnomaly, 0x1p-23);
    record.a_f0 = value(satellite.clockAt(reference), 0x1p-20);
    record.a_f1 = value(satellite.getClockDrift(), 0x1p-38);
}

void addGps(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    TQX_GPSAlm_s record;
    TQX_init_GPSAlm(&record);
    fill(record, satellite, epoch.time, 0.3);
    record.PRN = satellite.getSvid();
    record.SQRT_A = static_cast<float>(rounded(satellite.elementsAt(epoch.time).sqrtA, 0x1p-11));
    log.add(epoch, record, TQX_encode_GPSAlm);
}

void addGalileo(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    TQX_GALAlm_s record;
    TQX_init_GALAlm(&record);
    fill(record, satellite, epoch.time, 56 / degreesPerSemicircle);
    record.SVID = satellite.getSvid();
    record.Source = 1;
    record.IODa = 1;
    record.DEL_SQRT_A = static_cast<float>(
        rounded(satellite.elementsAt(epoch.time).sqrtA - std::sqrt(29600000), 0x1p-9));
    log.add(epoch, record, TQX_encode_GALAlm);
}

void addBeiDou(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    constexpr uint8_t inclined = 2;
    constexpr uint8_t medium = 3;
    TQX_BDSAlm_s record;
    TQX_init_BDSAlm(&record);
    fill(record, satellite, epoch.time, 0.3);
    record.PRN = satellite.getSvid();
    record.SatType = satellite.isGeosynchronous() ? inclined : medium;
    record.health = 0;
    record.SQRT_A = static_cast<float>(rounded(satellite.elementsAt(epoch.time).sqrtA, 0x1p-11));
    log.add(epoch, record, TQX_encode_BDSAlm);
}

void addQzss(BlockLog& log, const Epoch& epoch, const Satellite& satellite)
{
    constexpr double leastTilt = 0.1; // semicircles; a geostationary satellite has less
    const bool isInclined = satellite.elementsAt(epoch.time).inclination > leastTilt;
    TQX_QZSAlm_s record;
    TQX_init_QZSAlm(&record);
    fill(record, satellite, epoch.time, isInclined ? 0.25 : 0);
    record.PRN = satellite.getSvid();
    record.Source = 0;
    record.health = 0;
    record.SQRT_A = static_cast<float>(rounded(satellite.elementsAt(epoch.time).sqrtA, 0x1p-11));
    log.add(epoch, record, TQX_encode_QZSAlm);
}

/// The service of an SBAS satellite, as its messages number it.
uint8_t providerOf(unsigned number)
{
    constexpr uint8_t waas = 0;
    constexpr uint8_t egnos = 1;
    constexpr uint8_t msas = 2;
    constexpr uint8_t gagan = 3;
    constexpr uint8_t bdsbas = 5;
    switch (number) {
    case 23:
    case 36:
        return egnos;
    case 27:
    case 28:
        return gagan;
    case 37:
        return msas;
    case 43:
        return bdsbas;
    default:
        return waas;
    }
}

/// The satellites of a service send the almanacs of all of them; the first one received counts.
void addSbas(BlockLog& log, const Epoch& epoch, const Receiver& receiver,
             const Satellite& satellite)
{
    constexpr double timeStep = 64; // seconds
    constexpr uint8_t codeBase = 100;
    const uint8_t provider = providerOf(satellite.getNumber());
    const std::vector<Sight>& sights = receiver.getSights();
    const auto sender = std::find_if(sights.begin(), sights.end(), [&](const Sight& sight) {
        return sight.satellite->getSystem() == System::Sbas &&
               providerOf(sight.satellite->getNumber()) == provider;
    });
    if (sender == sights.end())
        return;
    const double reference = std::floor(epoch.time / timeStep) * timeStep;
    const auto positionAt = [&satellite](double time) {
        return pointAt(satellite.elementsAt(time), earthModel(System::Sbas), 0).position;
    };
    const Vector place = positionAt(reference);
    const Vector velocity = (positionAt(reference + 1) - positionAt(reference - 1)) * 0.5;
    const double second = SystemTime(System::Sbas, reference).second;
    TQX_GEOAlm_s record;
    TQX_init_GEOAlm(&record);
    record.PRN = sender->satellite->getSvid();
    record.AlmPRN = static_cast<uint8_t>(codeBase + satellite.getNumber());
    record.HealthStatus = static_cast<uint16_t>(provider << 4U);
    record.t_0 = static_cast<uint32_t>(std::llround(second)) % secondsPerDay;
    record.XG = static_cast<int32_t>(rounded(place.x, 2600));
    record.YG = static_cast<int32_t>(rounded(place.y, 2600));
    record.ZG = static_cast<int32_t>(rounded(place.z, 26000));
    record.XGDot = static_cast<float>(rounded(velocity.x, 10));
    record.YGDot = static_cast<float>(rounded(velocity.y, 10));
    record.ZGDot = static_cast<float>(rounded(velocity.z, 60));
    log.add(epoch, record, TQX_encode_GEOAlm);
}

} // namespace

void addAlmanacs(BlockLog& log, const Epoch& epoch, const Receiver& receiver,
                 GlonassAlmanacs& glonass)
{
    for (const auto& satellite : receiver.getSatellites()) {
        switch (satellite->getSystem()) {
        case System::Gps:
            addGps(log, epoch, *satellite);
            break;
        case System::Galileo:
            addGalileo(log, epoch, *satellite);
            break;
        case System::BeiDou:
            addBeiDou(log, epoch, *satellite);
            break;
        case System::Qzss:
            addQzss(log, epoch, *satellite);
            break;
        case System::Glonass:
            glonass.add(log, epoch, *satellite);
            break;
        case System::Sbas:
            addSbas(log, epoch, receiver, *satellite);
            break;
        case System::NavIc: // there is no block for them
            break;
        }
    }
}

} // namespace tqx::simulation
