#pragma once

#include "tqx/log/stream/Block.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

namespace tqx
{

/// The blocks that a merge has written around its current time, to recognise repetitions. Memory is
/// bounded: beyond 64 MiB the oldest are forgotten.
class WrittenBlocks
{
public:
    /// Times farther away than `span` milliseconds are forgotten.
    explicit WrittenBlocks(GnssMillis span) : m_span(span) {}

    /// Whether a block of input `input` is to be written; it then counts as written. `place` is the
    /// time that it is sorted by. A block with a time of its own is written once; one without,
    /// which an input may repeat, as often as in the input that has it most often. The blocks of
    /// one place come input by input.
    bool admits(const Block& block, GnssMillis place, size_t input);

private:
    struct Entry {
        uint64_t written = 0;
        size_t input = 0;  ///< that had it last
        uint64_t seen = 0; ///< how often that input had it
    };
    using Entries = std::unordered_map<std::string, Entry>;

    void moveTo(GnssMillis place);
    void forget(std::map<GnssMillis, Entries>::iterator bucket);

    GnssMillis m_span;
    GnssMillis m_place = 0;
    std::map<GnssMillis, Entries> m_timed;
    Entries m_others;   ///< without time, at the place
    size_t m_bytes = 0; ///< of the timed ones
    size_t m_otherBytes = 0;
    std::string m_key;
};

} // namespace tqx
