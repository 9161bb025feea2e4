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
    std::map<std::string, Content> fields; ///< wire fields that were read
};

struct Outcome {
    int32_t result = 0;
    Entry block;
};

/// Decodes one main block that starts at the first byte.
Outcome decode(const Kor::MessageApi::TQX_TypeLayout& type, const std::vector<uint8_t>& bytes);

} // namespace reference
