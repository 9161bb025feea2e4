#include "tqx/log/summary/NeighbourSummary.h"

#include <string_view>

namespace tqx
{

void NeighbourSummary::add(const Neighbour& neighbour)
{
    constexpr size_t mostAddresses = 1000;
    if (neighbour.kind == NeighbourKind::Ascii) {
        m_text.add(neighbour);
        return;
    }
    if (neighbour.kind == NeighbourKind::Rtcm3) {
        m_frames[neighbour.getNumber()].add(neighbour);
        return;
    }
    const std::string_view address = neighbour.getAddress();
    const auto known = m_sentences.find(address);
    if (known != m_sentences.end()) {
        known->second.add(neighbour);
    } else {
        m_sentences[m_sentences.size() < mostAddresses ? std::string(address) : ""].add(neighbour);
    }
}

} // namespace tqx
