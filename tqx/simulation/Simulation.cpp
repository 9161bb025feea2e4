#include "tqx/simulation/Simulation.h"

#include "tqx/log/time/GnssTime.h"
#include "tqx/simulation/Blocks.h"
#include "tqx/simulation/Broadcast.h"
#include "tqx/simulation/CompactBlocks.h"
#include "tqx/simulation/GlonassAlmanacs.h"
#include "tqx/simulation/PulseInput.h"

#include <cmath>
#include <map>
#include <utility>

namespace tqx::simulation
{

namespace
{

class Simulation
{
public:
    Simulation(const SimulationSettings& wanted, Buffer& output)
        : m_settings(wanted), m_random(wanted.seed),
          m_log(output, wanted.damage ? std::optional<uint64_t>(~wanted.seed) : std::nullopt),
          m_receiver(m_random, wanted.track, epochAt(0).time, wanted.receiver),
          m_faults(wanted.faults), m_pulses(wanted.pulsePeriod)
    {
    }

    void run(const AfterEpoch& afterEpoch);
    const std::vector<Fault>& getFaults() const { return m_faults.getFaults(); }

private:
    Epoch epochAt(uint64_t index) const;
    bool isDue(const Epoch& epoch, uint32_t everyMillis) const;
    void addNewEphemerides(const Epoch& epoch);
    void addBlocks(const Epoch& epoch);
    void addNeighbours(const Epoch& epoch);

    const SimulationSettings& m_settings;
    Random m_random;
    BlockLog m_log;
    Receiver m_receiver;
    FaultPlan m_faults;
    CompactBlocks m_compact;
    GlonassAlmanacs m_glonassAlmanacs;
    PulseInput m_pulses;
    std::map<uint8_t, int64_t> m_sentEphemerides; ///< number of the last one by satellite
};

Epoch Simulation::epochAt(uint64_t index) const
{
    const uint64_t passed = index * m_settings.periodMillis;
    const uint64_t tow = m_settings.towMillis + passed;
    const auto week = static_cast<uint16_t>(m_settings.week + tow / millisPerWeek);
    const auto towMillis = static_cast<uint32_t>(tow % millisPerWeek);
    return {week, towMillis, static_cast<double>(passed) * 1e-3,
            (static_cast<double>(week) - almanacWeek) * secondsPerWeek + towMillis * 1e-3};
}

/// Whether an epoch is the first one in its stretch of that many milliseconds.
bool Simulation::isDue(const Epoch& epoch, uint32_t everyMillis) const
{
    return epoch.towMillis % everyMillis < m_settings.periodMillis;
}

void Simulation::addNewEphemerides(const Epoch& epoch)
{
    for (const Sight& sight : m_receiver.getSights()) {
        const Satellite& satellite = *sight.satellite;
        const int64_t index = ephemerisIndex(satellite.getSystem(), epoch.time);
        const auto [sent, isFirst] = m_sentEphemerides.try_emplace(satellite.getSvid(), index);
        if (!isFirst && std::exchange(sent->second, index) == index)
            continue;
        if (satellite.getSystem() == System::Sbas) {
            addSbasEphemeris(m_log, epoch, satellite);
        } else if (satellite.getSystem() == System::Glonass) {
            addGlonassEphemeris(m_log, epoch, satellite);
        } else {
            addKeplerEphemeris(m_log, epoch, satellite);
        }
    }
}

void Simulation::addBlocks(const Epoch& epoch)
{
    constexpr uint32_t second = 1000;
    constexpr uint32_t almanacCycle = 750 * second; // the pages of GPS come round in it
    if (epoch.elapsed == 0)
        addSetup(m_log, epoch, m_settings.track.start);
    m_pulses.add(m_log, epoch, m_receiver);
    addMeasurements(m_log, epoch, m_receiver);
    if (m_settings.compact)
        m_compact.add(m_log, epoch, m_receiver);
    addPosition(m_log, epoch, m_receiver);
    if (m_receiver.hasSecondAntenna())
        addAttitude(m_log, epoch, m_receiver);
    addSensor(m_log, epoch, m_receiver.getTrack(), m_random);
    addNewEphemerides(epoch);
    if (epoch.elapsed == 0 || isDue(epoch, almanacCycle))
        addSystemPages(m_log, epoch, m_receiver);
    if (m_settings.almanacs && (epoch.elapsed == 0 || isDue(epoch, almanacCycle)))
        addAlmanacs(m_log, epoch, m_receiver, m_glonassAlmanacs);
    if (isDue(epoch, second)) {
        addTime(m_log, epoch);
        addChannels(m_log, epoch, m_receiver);
        addVisibility(m_log, epoch, m_receiver);
        addSatellitePositions(m_log, epoch, m_receiver);
        addResiduals(m_log, epoch, m_receiver);
        addIntegrity(m_log, epoch, m_receiver);
        addReceiverState(m_log, epoch, m_random, m_faults);
    }
    if (isDue(epoch, 5 * second)) {
        addText(m_log, epoch, m_random);
        addQuality(m_log, epoch);
    }
    if (isDue(epoch, 10 * second)) {
        addTimeOffsets(m_log, epoch, m_receiver);
        addPower(m_log, epoch, m_random);
        if (m_faults.areCorrectionsSent(epoch))
            addCorrections(m_log, epoch, m_settings.track.start);
    }
}

void Simulation::addNeighbours(const Epoch& epoch)
{
    constexpr uint32_t second = 1000;
    if (epoch.elapsed == 0 || isDue(epoch, 30 * second))
        addReply(m_log, epoch, m_receiver);
    addPositionSentence(m_log, epoch, m_receiver);
    if (isDue(epoch, 10 * second))
        addBaseFrames(m_log, m_settings.track.start);
}

void Simulation::run(const AfterEpoch& afterEpoch)
{
    const auto epochs =
        static_cast<uint64_t>(std::llround(m_settings.duration * 1000 / m_settings.periodMillis));
    const uint64_t enough = m_settings.size == 0 ? UINT64_MAX : m_settings.size;
    for (uint64_t index = 0; index < epochs && m_log.getSize() < enough; ++index) {
        const uint64_t before = m_log.getSize();
        const Epoch epoch = epochAt(index);
        m_receiver.setBlocked(m_faults.getBlocked(epoch));
        m_receiver.setCorrectionAge(m_faults.correctionAge(epoch));
        m_receiver.advance(epoch);
        m_faults.apply(epoch, m_receiver.getSights());
        if (m_faults.isSilent(epoch))
            continue;
        addBlocks(epoch);
        if (m_settings.mixed)
            addNeighbours(epoch);
        if (afterEpoch && !afterEpoch(m_log.getSize() - before))
            return;
    }
}

} // namespace

std::vector<Fault> simulate(const SimulationSettings& settings, Buffer& output,
                            const AfterEpoch& afterEpoch)
{
    Simulation simulation(settings, output);
    simulation.run(afterEpoch);
    return simulation.getFaults();
}

} // namespace tqx::simulation
