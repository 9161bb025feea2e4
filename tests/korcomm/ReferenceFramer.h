#pragma once

#include "StreamBuilder.h"

#include <cstdint>
#include <ostream>
#include <vector>

/// What framing makes of a stream. All offsets count from the start of the stream.
struct Framing {
    struct Stretch {
        uint64_t offset;
        uint64_t size;
    };

    std::vector<Stretch> blocks;
    std::vector<Stretch> dropped; ///< adjacent ones merged
    std::vector<uint64_t> checksumErrors;
    std::vector<uint64_t> invalidLengths;
    uint64_t left = 0;

    void addDropped(uint64_t offset, uint64_t size);
    uint64_t bytesInAll() const;
};

bool operator==(const Framing::Stretch& left, const Framing::Stretch& right);
bool operator==(const Framing& left, const Framing& right);
std::ostream& operator<<(std::ostream& out, const Framing& framing);

/// Frames a whole stream in the most straightforward way. With `ended` nothing more will come.
Framing referenceFraming(const Bytes& stream, bool ended);
