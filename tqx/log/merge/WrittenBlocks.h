#pragma once

#include "tqx/log/stream/Block.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>

namespace tqx
{

/// The blocks that a merge has written around the time that it has come to, to know those that come
/// again. Memory is bounded: of more than 64 MiB the oldest are forgotten.
class WrittenBlocks
{
public:
    /// Times farther away than `span` milliseconds are forgotten.
    explicit WrittenBlocks(GnssMillis span) : m_span(span) {}

    /// Whether a block of the input `input` is to be written, which then counts as written. `place`
    /// is the time that it is sorted by. A block with a time of its own is written once; of those
    /// without, which an input may repeat, as many as the input has that has most of them. The
    /// blocks of one place come input by input.
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
