#include "tqx/log/summary/NeighbourSummary.h"

#include <string_view>

namespace tqx
{

void NeighbourSummary::add(const Neighbour& neighbour)
{
    constexpr size_t mostAddresses = 1000;
    if (neighbour.kind == NeighbourKind::Ascii) {
        text.add(neighbour);
        return;
    }
    if (neighbour.kind == NeighbourKind::Rtcm3) {
        frames[neighbour.getNumber()].add(neighbour);
        return;
    }
    const std::string_view address = neighbour.getAddress();
    const auto known = sentences.find(address);
    if (known != sentences.end())
        known->second.add(neighbour);
    else
        sentences[sentences.size() < mostAddresses ? std::string(address) : ""].add(neighbour);
}

} // namespace tqx
