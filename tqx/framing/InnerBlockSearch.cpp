#include "tqx/framing/InnerBlockSearch.h"

#include "korcg_crc.h"
#include "korcg_load.h"
#include "tqx/framing/SyncSearch.h"

#include <algorithm>

namespace tqx
{

namespace
{

constexpr size_t kHeaderSize = 8;
constexpr size_t kCheckedFrom = 4;
// Marks may end this much before the bytes that have been summed.
constexpr size_t kMarkSlack = 8;
// Shorter stretches are summed directly; longer ones begin where marks reach.
constexpr size_t kShort = 64;

} // namespace

bool InnerBlockSearch::find(const uint8_t* bytes, size_t size, uint64_t position)
{
    if (found_ && *found_ >= position) {
        return true;
    }
    collect(bytes, size, position);
    sum(bytes, size, position);
    while (!claims_.empty() && claims_.front().end <= position + size) {
        const Claim claim = claims_.front();
        std::pop_heap(claims_.begin(), claims_.end());
        claims_.pop_back();
        if (claim.begin() >= position && isIntact(bytes + (claim.begin() - position), claim)) {
            found_ = claim.begin();
            return true;
        }
    }
    return false;
}

void InnerBlockSearch::collect(const uint8_t* bytes, size_t size, uint64_t position)
{
    searched_ = std::max(searched_, position);
    const uint64_t end = position + size;
    while (searched_ < end) {
        const uint8_t* from = bytes + (searched_ - position);
        searched_ += findSync(from, static_cast<size_t>(end - searched_));
        if (searched_ + kHeaderSize > end) {
            return;
        }
        const uint16_t length = korcg_load_u16(bytes + (searched_ - position) + 6);
        if (length >= kHeaderSize) {
            claims_.push_back({searched_ + length, length});
            std::push_heap(claims_.begin(), claims_.end());
        }
        searched_ += 2;
    }
}

// Without gaps, so that every claim's bytes have marks whatever the order of the claims.
void InnerBlockSearch::sum(const uint8_t* bytes, size_t size, uint64_t position)
{
    const uint64_t end = position + size;
    summed_ = std::max(summed_, position);
    if (end < summed_ + 2 * kMarkSlack) {
        return;
    }
    prefixes_.of(bytes + (summed_ - position), summed_, static_cast<size_t>(end - summed_));
    summed_ = end - kMarkSlack;
}

bool InnerBlockSearch::isIntact(const uint8_t* block, const Claim& claim)
{
    const uint8_t* checked = block + kCheckedFrom;
    const size_t size = claim.size - kCheckedFrom;
    const uint16_t sum = size < kShort ? korcg_crc16_bytes(checked, size)
                                       : prefixes_.of(checked, claim.begin() + kCheckedFrom, size);
    return sum == korcg_load_u16(block + 2);
}

} // namespace tqx
