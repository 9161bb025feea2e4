#include "tqx/log/summary/StreamSummary.h"

namespace tqx
{

namespace
{

constexpr size_t blockNumbers = 1 << 13;

} // namespace

StreamSummary::StreamSummary() : types(blockNumbers) {}

void StreamSummary::add(BlockStream& stream, const Block& block)
{
    std::unique_ptr<TypeSummary>& known = types[block.getNumber()];
    if (!known) {
        known = std::make_unique<TypeSummary>();
        known->isKnown = TQX_recordType(block.getNumber()) != 0;
    }
    TypeSummary& type = *known;
    ++type.blocks;
    type.bytes += block.size;
    type.revisions.set(block.getRevision());
    if (!type.isKnown)
        return;
    if (const int32_t result = decoder.decode(block); result < 0) {
        FailureSummary& failure = type.failures[result];
        if (failure.blocks++ == 0) {
            failure.file = stream.getName();
            failure.offset = block.offset;
        }
        stream.reportUndecodable(block, result);
        return;
    }
    if (const std::optional<GnssMillis> time = block.getTime()) {
        type.intervals.add(*time);
        last = time;
        if (!first)
            first = time;
    }
}

void StreamSummary::addDamage(const StreamGap& gap)
{
    constexpr size_t mostKept = 1000;
    ++damagedPlaces;
    if (damage.size() < mostKept)
        damage.push_back(gap);
}

std::map<uint16_t, const TypeSummary*> StreamSummary::getTypes() const
{
    std::map<uint16_t, const TypeSummary*> seen;
    for (size_t number = 0; number < types.size(); ++number)
        if (types[number])
            seen[static_cast<uint16_t>(number)] = types[number].get();
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
