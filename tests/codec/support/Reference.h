#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A decoder of its own for the tests: it walks the layout table with the bit primitives and keeps
/// what it reads by name instead of in records.
namespace reference
{

struct Entry;

/// Elements of one field as raw bits, or the entries of a sub-block field.
struct Content {
    std::vector<uint64_t> values;
    std::vector<Entry> entries;
};

struct Entry {
    uint32_t recordType = 0;
    uint32_t bits = 0;                     ///< bits consumed, those of its entries included
    std::map<std::string, Content> fields; ///< wire fields that were read, and TOWc
};

/// What a sub-block looks up in its main block.
struct Surroundings {
    const Kor::MessageApi::TQX_TypeLayout* main = nullptr;
    Entry values; ///< fields of the main block, as far as entries need them
    unsigned revision = 0;
};

/// The part of the context that follows the week; null: nobody follows it.
struct Clock {
    unsigned rollovers;
    uint32_t last;
};

struct Start {
    uint32_t offset = 0;
    uint32_t length = 0;                 ///< explicit length in bits, 0 for none
    const Surroundings* above = nullptr; ///< null when there is no parent
    Clock* clock = nullptr;
};

struct Outcome {
    int32_t result = 0;
    uint32_t offset = 0; ///< where decoding ended
    Entry block;         ///< also after a failure, as far as it was read
};

Outcome decode(const Kor::MessageApi::TQX_TypeLayout& type, const std::vector<uint8_t>& bytes,
               const Start& start = {});

} // namespace reference
