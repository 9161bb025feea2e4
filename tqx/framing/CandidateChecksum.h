#pragma once

#include "tqx/framing/PrefixChecksums.h"
#include "tqx_framing_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// The header of a block, as far as framing reads it.
struct BlockHeader {
    /// Up to and including the length; also the least valid length.
    static constexpr size_t headerSize = 8;
    static constexpr size_t checksumAt = 2;
    static constexpr size_t checkedFrom = 4;
    static constexpr size_t lengthAt = 6;
    static constexpr size_t syncSize = 2;
};

/// Tests the checksums of candidates one by one, at a cost linear in the bytes of the stream even
/// when most candidates are false and claim the same bytes over and over.
class TQX_FRAMING_API CandidateChecksum
{
public:
    /// `start`: offset of the first byte of the stream that candidates come from. `allowance`:
    /// bytes that may be summed for false candidates before overlapping claims share their sums;
    /// selects a method, never a result.
    explicit CandidateChecksum(uint64_t start = 0, uint64_t allowance = 0)
        : m_start(start), m_allowance(allowance)
    {
    }

    /// Whether the block of `length` bytes (at least BlockHeader::headerSize, at most 65,535) at
    /// `block`, which is at `offset` of the stream, has the checksum in its header. Offsets must
    /// not decrease from call to call.
    bool isIntact(const uint8_t* block, size_t length, uint64_t offset);

private:
    bool mayBeSummedInVain(size_t size, uint64_t offset);

    uint64_t m_start;
    uint64_t m_allowance;

    /// Bytes summed for candidates that turned out to be false. Beyond a limit that grows with the
    /// stream, m_prefixes sums the stretches instead, so that the work stays linear.
    uint64_t m_summedInVain = 0;
    PrefixChecksums m_prefixes;
};

} // namespace tqx
