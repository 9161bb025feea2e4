#pragma once

#include "model/Model.h"

#include <array>
#include <vector>

namespace korcg::generator
{

/// How a record type can be decoded without a guard before each field.
struct Shape {
    /// Rows of the leading fields at constant places: one check of `headBytes` covers them all.
    std::vector<int> head;
    /// Bytes of the head under each of the eight revisions, counted from the start of the block or
    /// entry.
    std::array<int, 8> headBytes{};
    /// The remaining wire rows in order: counted arrays, sub-block arrays, embedded sub-blocks.
    std::vector<int> tail;
    /// False when a counted array follows sub-blocks: once those are allocated there is no
    /// way back to the exact decoder.
    bool straight = true;

    bool dependsOnRevision() const { return headBytes.front() != headBytes.back() || conditional; }
    bool isPlain() const { return tail.empty(); }
    bool conditional = false; ///< some head field depends on the revision
};

Shape shapeOf(const RecordType& type);

/// The sub-block array of a type whose tail is that array alone, or null.
const Field* onlyBlocks(const RecordType& type, const Shape& shape);

/// Whether the decoder takes a counted array word by word, with a function of its own, because
/// its elements are wider than a byte or are split into parts.
bool isLoadedByWord(const RecordType& type, int index);

} // namespace korcg::generator
