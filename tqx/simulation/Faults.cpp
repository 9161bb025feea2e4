#include "tqx/simulation/Faults.h"

#include "tqx/simulation/Receiver.h"

#include <algorithm>
#include <cmath>

namespace tqx::simulation
{

namespace
{

constexpr double correctionPeriod = 10; ///< seconds
constexpr double transmission = 0.8;    ///< seconds that corrections take to arrive
constexpr double oldestCorrection = 60; ///< seconds

bool isActive(const Fault& fault, double elapsed)
{
    return elapsed >= fault.start && elapsed < fault.start + fault.duration;
}

bool isOn(const Fault& fault, const Sight& sight)
{
    return sight.satellite->getSystem() == fault.system &&
           sight.satellite->getNumber() == fault.number;
}

bool isNearL1(const Signal& signal)
{
    constexpr double l1 = 1575420000;
    constexpr double width = 5e6;
    return std::fabs(signal.frequency - l1) < width;
}

void reflect(Sight& sight, double elapsed)
{
    constexpr double amplitude = 4; // metres
    constexpr double period = 45;   // seconds
    for (unsigned i = 0; i < sight.signalCount; ++i)
        sight.signals[i].code += amplitude * std::sin(2 * pi * elapsed / period);
}

void loseLock(Sight& sight, double passed)
{
    constexpr double cycles[maxSignals] = {37, -12, 21};
    sight.lockTime = std::min(sight.lockTime, passed);
    for (unsigned i = 0; i < sight.signalCount; ++i)
        sight.signals[i].phase += cycles[i];
}

} // namespace

bool FaultPlan::has(FaultKind kind, double elapsed) const
{
    return std::any_of(m_faults.begin(), m_faults.end(), [kind, elapsed](const Fault& fault) {
        return fault.kind == kind && isActive(fault, elapsed);
    });
}

bool FaultPlan::isSilent(const Epoch& epoch)
{
    bool isOut = false;
    for (Fault& fault : m_faults) {
        if (fault.kind == FaultKind::Outage && isActive(fault, epoch.elapsed)) {
            ++fault.epochs;
            isOut = true;
        }
    }
    return isOut;
}

unsigned FaultPlan::getBlocked(const Epoch& epoch)
{
    unsigned systems = 0;
    for (Fault& fault : m_faults) {
        if (fault.kind == FaultKind::SystemOutage && isActive(fault, epoch.elapsed)) {
            ++fault.epochs;
            systems |= 1U << indexOf(fault.system);
        }
    }
    return systems;
}

void FaultPlan::apply(const Epoch& epoch, std::vector<Sight>& sights)
{
    constexpr double jump = 5;          // cycles
    constexpr double interference = 10; // dB
    constexpr double attenuation = 16;  // dB
    for (Fault& fault : m_faults) {
        const double passed = epoch.elapsed - fault.start;
        bool hasEffect = false;
        for (Sight& sight : sights) {
            if (fault.kind == FaultKind::Slip && passed >= 0 && isOn(fault, sight)) {
                sight.signals[0].phase += jump;
                hasEffect = true;
            } else if (fault.kind == FaultKind::LossOfLock && passed >= 0 && isOn(fault, sight)) {
                loseLock(sight, passed);
                hasEffect = true;
            } else if (!isActive(fault, epoch.elapsed)) {
                continue;
            } else if (fault.kind == FaultKind::Multipath && isOn(fault, sight)) {
                reflect(sight, epoch.elapsed);
                hasEffect = true;
            } else if (fault.kind == FaultKind::Interference || fault.kind == FaultKind::Antenna) {
                const bool isAll = fault.kind == FaultKind::Antenna;
                for (unsigned i = 0; i < sight.signalCount; ++i) {
                    if (isAll || isNearL1(sight.signals[i]))
                        sight.signals[i].cn0 -= isAll ? attenuation : interference;
                }
                hasEffect = true;
            }
        }
        fault.epochs += hasEffect ? 1 : 0;
    }
}

bool FaultPlan::hasInterference(const Epoch& epoch) const
{
    return has(FaultKind::Interference, epoch.elapsed);
}

bool FaultPlan::isAntennaOpen(const Epoch& epoch) const
{
    return has(FaultKind::Antenna, epoch.elapsed);
}

bool FaultPlan::areCorrectionsSent(const Epoch& epoch) const
{
    return !has(FaultKind::Corrections, epoch.elapsed);
}

std::optional<double> FaultPlan::correctionAge(const Epoch& epoch)
{
    bool isUsed = false;
    for (Fault& fault : m_faults) {
        if (fault.kind != FaultKind::Corrections)
            continue;
        isUsed = true;
        fault.epochs += isActive(fault, epoch.elapsed) ? 1 : 0;
    }
    if (!isUsed)
        return std::nullopt;
    double age = std::fmod(epoch.tow(), correctionPeriod);
    while (has(FaultKind::Corrections, epoch.elapsed - age) && age <= oldestCorrection)
        age += correctionPeriod;
    age += transmission;
    return age <= oldestCorrection ? std::optional<double>(age) : std::nullopt;
}

} // namespace tqx::simulation
