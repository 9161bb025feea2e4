#pragma once

#include "tqx/framing/PrefixChecksums.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tqx
{

/// Looks for a complete block with a correct checksum within bytes that another block claims.
/// Called again as more bytes arrive; every byte is examined and summed once, however often this is
/// called and however many headers claim the byte.
class InnerBlockSearch
{
public:
    /// Whether a block begins and ends within the `size` bytes (at most 65,535) from `bytes` on,
    /// which are at `position` of the stream. Neither the position nor the end of the bytes may
    /// decrease from call to call.
    bool find(const uint8_t* bytes, size_t size, uint64_t position);

private:
    /// What the header of a block says.
    struct Claim {
        uint64_t end;
        uint16_t size;

        uint64_t begin() const { return end - size; }
        /// Orders a heap by the end, first ones first.
        bool operator<(const Claim& other) const { return end > other.end; }
    };

    void collect(const uint8_t* bytes, size_t size, uint64_t position);
    void sum(const uint8_t* bytes, size_t size, uint64_t position);
    bool isIntact(const uint8_t* block, const Claim& claim);

    std::vector<Claim> m_claims;     ///< a heap of those that end after all bytes so far
    std::optional<uint64_t> m_found; ///< where the last block found begins
    uint64_t m_searched = 0;         ///< headers before this place have become claims
    uint64_t m_summed = 0;           ///< the checksums extend at least as far
    PrefixChecksums m_prefixes;
};

} // namespace tqx
