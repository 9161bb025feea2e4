#pragma once

#include "tqx/gnss/orbit/System.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tqx::simulation
{

struct Epoch;
struct Sight;

/// Faults that can be simulated at a known time.
enum class FaultKind : uint8_t {
    Outage,       ///< the receiver logs nothing
    SystemOutage, ///< no satellite of a system is received
    Multipath,    ///< a reflection of 4 m on all codes of a satellite, with a period of 45 s
    Slip,         ///< the phase of the first signal of a satellite jumps by 5 cycles, unnoticed
    LossOfLock,   ///< lock on all signals of a satellite is lost and found again at once
    Interference, ///< C/N0 around L1 is 10 dB lower, and the receiver reports it
    Antenna,      ///< all C/N0 are 16 dB lower, and the receiver reports an open antenna
    Corrections,  ///< the base sends no corrections; else they come every 10 seconds
};

struct Fault {
    FaultKind kind = FaultKind::Outage;
    double start = 0;            ///< seconds since the start of the log
    double duration = 0;         ///< seconds; without meaning for slips and losses of lock
    System system = System::Gps; ///< of SystemOutage and of the satellite
    unsigned number = 0;         ///< of the satellite in its system
    uint64_t epochs = 0;         ///< in which it had an effect; counted by FaultPlan
};

/// Applies faults to what the receiver tracks and measures.
class FaultPlan
{
public:
    explicit FaultPlan(std::vector<Fault> faults) : m_faults(std::move(faults)) {}

    /// Whether nothing of the epoch is logged.
    bool isSilent(const Epoch& epoch);

    /// Bits of the systems that are not received.
    unsigned getBlocked(const Epoch& epoch);

    /// Changes what was measured.
    void apply(const Epoch& epoch, std::vector<Sight>& sights);

    /// Whether the receiver reports interference, or an open antenna.
    bool hasInterference(const Epoch& epoch) const;
    bool isAntennaOpen(const Epoch& epoch) const;

    /// Whether the base sends corrections at this epoch.
    bool areCorrectionsSent(const Epoch& epoch) const;

    /// Seconds since the last corrections were sent; nothing when the receiver uses none, or no
    /// longer. It uses them where the plan has a fault of that kind.
    std::optional<double> correctionAge(const Epoch& epoch);

    const std::vector<Fault>& getFaults() const { return m_faults; }

private:
    bool has(FaultKind kind, double elapsed) const;

    std::vector<Fault> m_faults;
};

} // namespace tqx::simulation
