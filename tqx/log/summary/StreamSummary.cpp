#include "tqx/log/summary/StreamSummary.h"

#include <algorithm>

namespace tqx
{

namespace
{

constexpr size_t blockNumbers = 1 << 13;

void keepFirst(std::vector<BlockPlace>& places, const BlockPlace& place)
{
    constexpr size_t mostKept = 1000;
    if (places.size() < mostKept)
        places.push_back(place);
}

} // namespace

StreamSummary::StreamSummary(const Schema& schema)
    : m_schema(schema), m_decoder(schema), m_types(blockNumbers)
{
}

void StreamSummary::add(BlockStream& stream, const Block& block)
{
    std::unique_ptr<TypeSummary>& known = m_types[block.getNumber()];
    if (!known) {
        known = std::make_unique<TypeSummary>(m_roomForIntervals, m_roomForEpochs);
        known->isKnown = m_schema.getBlockType(block.getNumber()) != nullptr;
    }
    TypeSummary& type = *known;
    ++type.blocks;
    type.bytes += block.size;
    type.revisions.set(block.getRevision());
    if (!type.isKnown) {
        keepFirst(m_unknownPlaces, {stream.getName(), block.offset, block.getNumber(), 0});
        return;
    }
    if (const int32_t result = m_decoder.decode(block); result < 0) {
        FailureSummary& failure = type.failures[result];
        if (failure.blocks++ == 0) {
            failure.file = stream.getName();
            failure.offset = block.offset;
        }
        keepFirst(m_undecodablePlaces, {stream.getName(), block.offset, block.getNumber(), result});
        stream.reportUndecodable(block, result);
        return;
    }
    if (const std::optional<GnssMillis> time = block.getTime())
        addTime(stream, block, type, *time);
}

// Blocks of different types may be out of order: some carry the time at which a satellite sent
// their content.
void StreamSummary::addTime(const BlockStream& stream, const Block& block, TypeSummary& type,
                            GnssMillis time)
{
    m_first = m_first ? std::min(*m_first, time) : time;
    m_last = m_last ? std::max(*m_last, time) : time;
    type.intervals.add(time);
    if (type.last && time < *type.last && type.stepsBack == m_stepsBack) {
        if (m_stepsBack++ == 0)
            m_firstStepBack = {stream.getName(), block.offset, block.getNumber(), 0};
        m_latest.reset();
    }
    type.stepsBack = m_stepsBack;
    if (!m_latest || time > *m_latest) {
        m_intervals.add(time);
        m_latest = time;
    }
    if (type.last != time && !type.epochs.add(time) && m_repeated.add(time))
        ++m_repeatedEpochs;
    type.last = time;
}

std::optional<uint64_t> StreamSummary::getUsualInterval() const
{
    std::optional<uint64_t> usual = m_intervals.getUsual();
    uint64_t most = 0;
    if (usual)
        return usual;
    for (const auto& [number, type] : getTypes()) {
        const std::optional<uint64_t> own = type->intervals.getUsual();
        if (own && type->blocks > most) {
            most = type->blocks;
            usual = own;
        }
    }
    return usual;
}

void StreamSummary::addDamage(const StreamGap& gap)
{
    constexpr size_t mostKept = 1000;
    ++m_damagedPlaces;
    if (m_damage.size() < mostKept)
        m_damage.push_back(gap);
}

std::map<uint16_t, const TypeSummary*> StreamSummary::getTypes() const
{
    std::map<uint16_t, const TypeSummary*> seen;
    for (size_t number = 0; number < m_types.size(); ++number) {
        if (m_types[number])
            seen[static_cast<uint16_t>(number)] = m_types[number].get();
    }
    return seen;
}

uint64_t StreamSummary::getUnknown() const
{
    uint64_t unknown = 0;
    for (const auto& [number, type] : getTypes())
        unknown += type->isKnown ? 0 : type->blocks;
    return unknown;
}

} // namespace tqx
