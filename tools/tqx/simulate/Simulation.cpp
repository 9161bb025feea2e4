#include "Simulation.h"

#include "Blocks.h"

#include <cmath>
#include <map>

namespace tool
{

namespace
{

constexpr uint32_t millisPerWeek = 604800000;

class Simulation
{
public:
    Simulation(const SimulationSettings& wanted, Output& output)
        : settings(wanted), random(wanted.seed),
          log(output, wanted.damage ? std::optional<uint64_t>(~wanted.seed) : std::nullopt),
          receiver(random, wanted.week, wanted.towMillis * 1e-3)
    {
    }

    void run();

private:
    Epoch epochAt(uint64_t index) const;
    bool isDue(const Epoch& epoch, uint32_t everyMillis) const;
    void addNewEphemerides(const Epoch& epoch);
    void addBlocks(const Epoch& epoch);

    const SimulationSettings& settings;
    Random random;
    BlockLog log;
    Receiver receiver;
    std::map<uint8_t, uint32_t> sentEphemerides; ///< reference time by satellite
};

Epoch Simulation::epochAt(uint64_t index) const
{
    const uint64_t passed = index * settings.periodMillis;
    const uint64_t tow = settings.towMillis + passed;
    return {static_cast<uint16_t>(settings.week + tow / millisPerWeek),
            static_cast<uint32_t>(tow % millisPerWeek), static_cast<double>(passed) * 1e-3};
}

/// Whether an epoch is the first one in its stretch of that many milliseconds.
bool Simulation::isDue(const Epoch& epoch, uint32_t everyMillis) const
{
    return epoch.towMillis % everyMillis < settings.periodMillis;
}

void Simulation::addNewEphemerides(const Epoch& epoch)
{
    for (const Sight& sight : receiver.getSights()) {
        const auto [sent, isFirst] = sentEphemerides.try_emplace(sight.prn, sight.ephemeris.toe);
        if (!isFirst && sent->second == sight.ephemeris.toe)
            continue;
        sent->second = sight.ephemeris.toe;
        addEphemeris(log, epoch, sight);
    }
}

void Simulation::addBlocks(const Epoch& epoch)
{
    constexpr uint32_t second = 1000;
    addMeasurements(log, epoch, receiver);
    addPosition(log, epoch, receiver);
    addSensor(log, epoch, random);
    addNewEphemerides(epoch);
    if (isDue(epoch, second)) {
        addChannels(log, epoch, receiver);
        addReceiverState(log, epoch, random);
    }
    if (isDue(epoch, 5 * second))
        addText(log, epoch, random);
    if (isDue(epoch, 10 * second)) {
        addBatteries(log, epoch, random);
        addCorrection(log, epoch);
    }
}

void Simulation::run()
{
    const auto epochs =
        static_cast<uint64_t>(std::llround(settings.duration * 1000 / settings.periodMillis));
    for (uint64_t index = 0; index < epochs; ++index) {
        const Epoch epoch = epochAt(index);
        receiver.advance(epoch);
        addBlocks(epoch);
    }
}

} // namespace

void simulate(const SimulationSettings& settings, Output& output)
{
    Simulation(settings, output).run();
    output.flush();
}

} // namespace tool
