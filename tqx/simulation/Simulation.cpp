#include "tqx/simulation/Simulation.h"

#include "tqx/simulation/Blocks.h"
#include "tqx/simulation/Broadcast.h"
#include "tqx/simulation/CompactBlocks.h"

#include <cmath>
#include <map>
#include <utility>

namespace tqx::simulation
{

namespace
{

constexpr uint32_t millisPerWeek = 604800000;

class Simulation
{
public:
    Simulation(const SimulationSettings& wanted, Buffer& output)
        : settings(wanted), random(wanted.seed),
          log(output, wanted.damage ? std::optional<uint64_t>(~wanted.seed) : std::nullopt),
          receiver(random, wanted.track, epochAt(0).time)
    {
    }

    void run(const AfterEpoch& afterEpoch);

private:
    Epoch epochAt(uint64_t index) const;
    bool isDue(const Epoch& epoch, uint32_t everyMillis) const;
    void addNewEphemerides(const Epoch& epoch);
    void addBlocks(const Epoch& epoch);
    void addNeighbours(const Epoch& epoch);

    const SimulationSettings& settings;
    Random random;
    BlockLog log;
    Receiver receiver;
    CompactBlocks compact;
    std::map<uint8_t, int64_t> sentEphemerides; ///< number of the last one by satellite
};

Epoch Simulation::epochAt(uint64_t index) const
{
    const uint64_t passed = index * settings.periodMillis;
    const uint64_t tow = settings.towMillis + passed;
    const auto week = static_cast<uint16_t>(settings.week + tow / millisPerWeek);
    const auto towMillis = static_cast<uint32_t>(tow % millisPerWeek);
    return {week, towMillis, static_cast<double>(passed) * 1e-3,
            (static_cast<double>(week) - almanacWeek) * secondsPerWeek + towMillis * 1e-3};
}

/// Whether an epoch is the first one in its stretch of that many milliseconds.
bool Simulation::isDue(const Epoch& epoch, uint32_t everyMillis) const
{
    return epoch.towMillis % everyMillis < settings.periodMillis;
}

void Simulation::addNewEphemerides(const Epoch& epoch)
{
    for (const Sight& sight : receiver.getSights()) {
        const Satellite& satellite = *sight.satellite;
        const int64_t index = ephemerisIndex(satellite.getSystem(), epoch.time);
        const auto [sent, isFirst] = sentEphemerides.try_emplace(satellite.getSvid(), index);
        if (!isFirst && std::exchange(sent->second, index) == index)
            continue;
        if (satellite.getSystem() == System::Glonass)
            addGlonassEphemeris(log, epoch, satellite);
        else
            addKeplerEphemeris(log, epoch, satellite);
    }
}

void Simulation::addBlocks(const Epoch& epoch)
{
    constexpr uint32_t second = 1000;
    constexpr uint32_t almanacCycle = 750 * second; // the pages of GPS come round in it
    if (epoch.elapsed == 0)
        addSetup(log, epoch, settings.track.start);
    addMeasurements(log, epoch, receiver);
    if (settings.compact)
        compact.add(log, epoch, receiver);
    addPosition(log, epoch, receiver);
    addSensor(log, epoch, receiver.getTrack(), random);
    addNewEphemerides(epoch);
    if (epoch.elapsed == 0 || isDue(epoch, almanacCycle))
        addSystemPages(log, epoch, receiver);
    if (isDue(epoch, second)) {
        addTime(log, epoch);
        addChannels(log, epoch, receiver);
        addVisibility(log, epoch, receiver);
        addSatellitePositions(log, epoch, receiver);
        addResiduals(log, epoch, receiver);
        addIntegrity(log, epoch, receiver);
        addReceiverState(log, epoch, random);
    }
    if (isDue(epoch, 5 * second)) {
        addText(log, epoch, random);
        addQuality(log, epoch);
    }
    if (isDue(epoch, 10 * second)) {
        addTimeOffsets(log, epoch, receiver);
        addPower(log, epoch, random);
        addCorrections(log, epoch, settings.track.start);
    }
}

void Simulation::addNeighbours(const Epoch& epoch)
{
    constexpr uint32_t second = 1000;
    if (epoch.elapsed == 0 || isDue(epoch, 30 * second))
        addReply(log, epoch, receiver);
    addPositionSentence(log, epoch, receiver);
    if (isDue(epoch, 10 * second))
        addBaseFrames(log, settings.track.start);
}

void Simulation::run(const AfterEpoch& afterEpoch)
{
    const auto epochs =
        static_cast<uint64_t>(std::llround(settings.duration * 1000 / settings.periodMillis));
    const uint64_t enough = settings.size == 0 ? UINT64_MAX : settings.size;
    for (uint64_t index = 0; index < epochs && log.getSize() < enough; ++index) {
        const uint64_t before = log.getSize();
        const Epoch epoch = epochAt(index);
        receiver.advance(epoch);
        addBlocks(epoch);
        if (settings.mixed)
            addNeighbours(epoch);
        if (afterEpoch && !afterEpoch(log.getSize() - before))
            return;
    }
}

} // namespace

void simulate(const SimulationSettings& settings, Buffer& output, const AfterEpoch& afterEpoch)
{
    Simulation(settings, output).run(afterEpoch);
}

} // namespace tqx::simulation
