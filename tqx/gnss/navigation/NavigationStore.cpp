#include "tqx/gnss/navigation/NavigationStore.h"

#include "tqx/gnss/navigation/Adapters.h"

#include <fmt/format.h>

namespace tqx
{

std::vector<std::string> NavigationLosses::describe() const
{
    std::vector<std::string> lines;
    if (withoutTime != 0) {
        lines.push_back(fmt::format("{} navigation block{} without a time left out", withoutTime,
                                    withoutTime == 1 ? "" : "s"));
    }
    if (withoutSatellite != 0) {
        lines.push_back(fmt::format("{} navigation block{} of an unknown satellite left out",
                                    withoutSatellite, withoutSatellite == 1 ? "" : "s"));
    }
    if (ofNavicL1 != 0) {
        lines.push_back(fmt::format("{} navigation block{} of NavIC with the message on L1 left "
                                    "out, which is not supported",
                                    ofNavicL1, ofNavicL1 == 1 ? "" : "s"));
    }
    return lines;
}

bool NavigationStore::wants(uint16_t blockNumber)
{
    return Ephemeris::wants(blockNumber) || Ionosphere::wants(blockNumber) ||
           TimeOffset::wants(blockNumber);
}

void NavigationStore::take(const DecodedBlock& decoded)
{
    const uint16_t number = decoded.block.getNumber();
    if (!gnssMillis(decoded.getHeader().TOW, decoded.getHeader().WNc)) {
        ++m_losses.withoutTime;
    } else if (Ephemeris::wants(number)) {
        if (navigation::isNavicOnL1(decoded)) {
            ++m_losses.ofNavicL1;
        } else if (const auto ephemeris = Ephemeris::of(decoded)) {
            add(*ephemeris);
        } else {
            ++m_losses.withoutSatellite;
        }
    } else if (Ionosphere::wants(number)) {
        if (const auto data = Ionosphere::of(decoded))
            add(*data);
    } else {
        for (const auto& offset : TimeOffset::of(decoded)) {
            if (offset)
                add(*offset);
        }
    }
}

void NavigationStore::add(const Ephemeris& ephemeris)
{
    const Key key = {ephemeris.satellite.system, ephemeris.satellite.number, ephemeris.message,
                     ephemeris.reference};
    const auto [from, to] = m_places.equal_range(key);
    for (auto place = from; place != to; ++place) {
        if (isSame(m_ephemerides[place->second], ephemeris))
            return;
    }
    m_places.emplace(key, m_ephemerides.size());
    m_ephemerides.push_back(ephemeris);
}

void NavigationStore::add(const Ionosphere& data)
{
    const auto last = m_lastIonosphere.find(data.system);
    if (last != m_lastIonosphere.end() && m_ionosphere[last->second].values == data.values &&
        m_ionosphere[last->second].disturbance == data.disturbance)
        return;
    m_lastIonosphere[data.system] = m_ionosphere.size();
    m_ionosphere.push_back(data);
}

void NavigationStore::add(const TimeOffset& offset)
{
    const auto last = m_lastOffset.find(offset.kind);
    if (last != m_lastOffset.end()) {
        const TimeOffset& known = m_offsets[last->second];
        if (known.reference == offset.reference && known.a0 == offset.a0 && known.a1 == offset.a1 &&
            known.a2 == offset.a2)
            return;
    }
    m_lastOffset[offset.kind] = m_offsets.size();
    m_offsets.push_back(offset);
}

} // namespace tqx
