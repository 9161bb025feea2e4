#include "tqx/gnss/observation/EpochSelection.h"

#include "tqx/log/select/NamePattern.h"

#include <algorithm>
#include <iterator>

namespace tqx
{

namespace
{

bool matchesAny(const std::string& name, const std::vector<std::string>& patterns)
{
    return std::any_of(patterns.begin(), patterns.end(),
                       [&](const std::string& pattern) { return matchesPattern(name, pattern); });
}

} // namespace

bool EpochSelection::accepts(const SatelliteId& satellite) const
{
    return satellites.empty() || matchesAny(satellite.text(), satellites);
}

void EpochSelection::reduce(ObservationEpoch& epoch) const
{
    if (satellites.empty() && signals.empty())
        return;
    const auto isUnwanted = [this](const Observation& observation) {
        const std::string code = {observation.code.band, observation.code.attribute};
        return !accepts(observation.satellite) ||
               (!signals.empty() && !matchesAny(code, signals) &&
                !matchesAny(observation.satellite.system + code, signals));
    };
    auto& all = epoch.observations;
    all.erase(std::remove_if(all.begin(), all.end(), isUnwanted), all.end());
}

} // namespace tqx
