#include "tqx/simulation/Blocks.h"

#include "tqx/simulation/Broadcast.h"

namespace tqx::simulation
{

using namespace Kor::MessageApi;

namespace
{

constexpr uint8_t rising = 1;
constexpr uint8_t setting = 2;

/// Two bits for each of the first `count` signals, in the slots of the constellation.
uint16_t statesOf(const Sight& sight, unsigned count, unsigned state)
{
    unsigned states = 0;
    for (unsigned i = 0; i < count; ++i)
        states |= state << 2U * sight.signals[i].plan->slot;
    return static_cast<uint16_t>(states);
}

uint8_t frequencyOf(const Sight& sight)
{
    return frequencySlot(sight.satellite->getSystem(), sight.satellite->getChannel());
}

} // namespace

void addChannels(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr unsigned healthy = 1;
    constexpr unsigned tracking = 3;
    constexpr unsigned used = 2;
    TQX_ChannelStatus_s record;
    TQX_init_ChannelStatus(&record);
    for (const Sight& sight : receiver.getSights()) {
        TQX_ChannelSatInfo_s& satellite = *TQX_append_ChannelStatus_SatInfo(&record);
        const auto azimuth = static_cast<unsigned>(steps(sight.azimuth(), 1)) % 360;
        satellite.SVID = sight.satellite->getSvid();
        satellite.FreqNr = frequencyOf(sight);
        satellite.Azimuth_RiseSet =
            static_cast<uint16_t>(azimuth | unsigned{sight.rising ? rising : setting} << 14U);
        satellite.HealthStatus = statesOf(sight, sight.signalCount, healthy);
        satellite.Elevation = static_cast<int8_t>(steps(sight.elevation(), 1));
        satellite.RxChannel = sight.channel;
        TQX_ChannelStateInfo_s& state = *TQX_append_ChannelSatInfo_StateInfo(&satellite);
        state.TrackingStatus = statesOf(sight, sight.signalCount, tracking);
        state.PVTStatus = statesOf(sight, sight.used ? 2 : 0, used);
    }
    log.add(epoch, record, TQX_encode_ChannelStatus);
}

void addVisibility(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr uint8_t fromEphemeris = 2;
    TQX_SatVisibility1_s record;
    TQX_init_SatVisibility1(&record);
    record.Revision = 1;
    record.ElevationMask = static_cast<float>(Receiver::maskElevation);
    for (const Sight& sight : receiver.getSights()) {
        TQX_SatInfo_s& satellite = *TQX_append_SatVisibility1_SatInfo(&record);
        satellite.SVID = sight.satellite->getSvid();
        satellite.FreqNr = frequencyOf(sight);
        satellite.Azimuth = static_cast<uint16_t>(steps(sight.azimuth(), 0.01) % 36000);
        satellite.Elevation = static_cast<int16_t>(steps(sight.elevation(), 0.01));
        satellite.RiseSet = sight.rising ? rising : setting;
        satellite.OrbitInfo = fromEphemeris;
        satellite.RangeRate = static_cast<float>(rounded(sight.rangeRate, 0.01));
    }
    log.add(epoch, record, TQX_encode_SatVisibility1);
}

void addSatellitePositions(BlockLog& log, const Epoch& epoch, const Receiver& receiver)
{
    constexpr unsigned place[systemCount] = {0, 1, 2, 4, 5, 6, 3}; // in the counts by system
    TQX_PVTSatCartesian_s record;
    TQX_init_PVTSatCartesian(&record);
    for (const Sight& sight : receiver.getSights()) {
        if (!sight.used)
            continue;
        const System system = sight.satellite->getSystem();
        const Vector& position = sight.sent.motion.position;
        TQX_SatPos_s& satellite = *TQX_append_PVTSatCartesian_SatPos(&record);
        satellite.SVID = sight.satellite->getSvid();
        satellite.X = rounded(position.x, 0.001);
        satellite.Y = rounded(position.y, 0.001);
        satellite.Z = rounded(position.z, 0.001);
        satellite.ClkCorr = rounded(sight.sent.clock, 1e-12);
        const SystemTime reference = referenceOf(system, epoch.time);
        satellite.WNt_oe = reference.week;
        satellite.t_oe = static_cast<float>(reference.second);
        ++record.NrSVPerSystem[place[indexOf(system)]];
    }
    log.add(epoch, record, TQX_encode_PVTSatCartesian);
}

} // namespace tqx::simulation
