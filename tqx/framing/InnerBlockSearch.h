#pragma once

#include "tqx/framing/PrefixChecksums.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tqx
{

/// Looks for a whole block with the right checksum within bytes that another block claims. It is
/// asked again as more bytes come; every byte is looked at and summed once, however often it is
/// asked and however many headers claim it.
class InnerBlockSearch
{
public:
    /// Whether one begins and ends within the `size` bytes (at most 65,535) from `bytes` on, which
    /// are at `position` of the stream. From call to call neither the position nor the end of the
    /// bytes may go back.
    bool find(const uint8_t* bytes, size_t size, uint64_t position);

private:
    /// What a header says that begins a block.
    struct Claim {
        uint64_t end;
        uint16_t size;

        uint64_t begin() const { return end - size; }
        /// Makes the one that ends first the first of a heap.
        bool operator<(const Claim& other) const { return end > other.end; }
    };

    void collect(const uint8_t* bytes, size_t size, uint64_t position);
    void sum(const uint8_t* bytes, size_t size, uint64_t position);
    bool isIntact(const uint8_t* block, const Claim& claim);

    std::vector<Claim> m_claims;     ///< a heap of those that end after all bytes so far
    std::optional<uint64_t> m_found; ///< where the last block begins that was found
    uint64_t m_searched = 0;         ///< headers before this place have become claims
    uint64_t m_summed = 0;           ///< the checksums reach at least as far
    PrefixChecksums m_prefixes;
};

} // namespace tqx
