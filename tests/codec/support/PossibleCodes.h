#pragma once

#include "TQX_codec.h"

#include <cstdint>
#include <set>

enum class Direction { Decoding, Encoding };

/// The codes of one type that an operation can produce, as they follow from its layout.
///
/// - EXT_BUFFER_OVERFLOW names the last field that did not fit. After a field that does not fit
///   every further scalar is still tried at the same place, so a field has its say only when each
///   of them fits into the bytes that were too few for it. This leaves Sync1, and most fields that
///   are followed by a wider or equally wide one, without it.
/// - INT_BUFFER_OVERFLOW needs a count field that can exceed the capacity.
/// - SIZE_UNDERFLOW and INTERNAL need an explicit length, which only decoders take: one that is too
///   short, or one that makes the offset wrap. Types with a nested array have a second
///   SIZE_UNDERFLOW code that nothing produces; the layout does not even hold it.
/// - CRC_CHECKSUM would need a block that does not end on a whole byte or is without an ID; every
///   field has whole bytes, and a buffer without room for the header gives a code before.
/// - DISABLED, INVALID_MESSAGE: the driver's. INVALID_CRC, BUFFER_OVERFLOW, EOF: nothing here.
std::set<int32_t> possibleCodes(const Kor::MessageApi::TQX_TypeLayout& type, Direction direction);
