#pragma once

#include "RecordMembers.h"
#include "korcg_assert.h"

#include <cstdint>

/// Assertions of the decoders on the records above a sub-block. They report programming errors: a
/// sub-block is decoded only from inside its main block.
namespace Kor::MessageApi
{

/// Source that the codec's assertions name.
constexpr const char codecPath[] = "messageapi\\formats\\tqx\\src\\generated\\TQX_codec";

/// Asserts that `father`, the direct parent, exists and is of the kind that the type requires.
void assertKind(const TQX_TypeLayout& type, const void* father);

/// Asserts that the parent links lead to a main block and returns its record.
const void* assertMainBlock(const TQX_TypeLayout& type, const void* father);

} // namespace Kor::MessageApi
