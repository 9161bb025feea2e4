#pragma once

#include "StreamBuilder.h"
#include "tqx/log/mixed/Neighbour.h"

#include <cstdint>
#include <ostream>
#include <vector>

/// What scanning makes of runs of bytes, in order; adjacent damage is one part.
struct Part {
    uint64_t offset;
    uint64_t size;
    char kind; ///< N, R, A, or - for damage
};

using Parts = std::vector<Part>;

void addPart(Parts& parts, const tqx::Neighbour& neighbour);
void addDamage(Parts& parts, uint64_t offset, uint64_t size);

bool operator==(const Part& left, const Part& right);
std::ostream& operator<<(std::ostream& out, const Part& part);

/// Scans a whole run in the most straightforward way.
Parts referenceParts(const Bytes& run);
