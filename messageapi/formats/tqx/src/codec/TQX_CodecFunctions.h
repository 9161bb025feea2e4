#pragma once

#include "TQX_Context.h"

#include <cstdint>

/// Decoding and encoding of blocks: the contract of all functions of the codec. TQX_codec.h adds
/// the records TQX_<Name>_s, one for each type, and the functions that are named after a type:
///
///     int TQX_init_<Name>(TQX_<Name>_s* record);
///     int32_t TQX_decode_<Name>(TQX_Context_s* context, const uint8_t* buffer, uint16_t size,
///                               uint32_t* offset, void* father, uint32_t explicitLength,
///                               TQX_<Name>_s* record);
///     int TQX_encode_<Name>(unsigned char* buffer, unsigned short bufferSize,
///                           TQX_<Name>_s* record);
///     TQX_<Sub>_s* TQX_append_<Name>_<Field>(TQX_<Name>_s* record);
///
/// Results. Decoders and encoders return a number of bits, or a negative code whose name
/// TQX_errorName() gives. Data, however damaged, is never more than a negative code. A wrong call
/// (a sub-block without the records above it, a count above 0 over a null array) fails an assertion
/// that names the source and ends the process. A null pointer where none is allowed, and memory
/// that the system refuses, are not looked for.
///
/// Records and what they own. A record is the caller's memory. The sub-block arrays below it are
/// allocated by decoding and by TQX_append_*, and belong to the record: TQX_release() frees them,
/// and so does the destructor of a record type that has arrays. TQX_OwnedRecord owns a record of
/// any type; other memory (TQX_AnyRecord_u) is released by the caller. Copying a record byte by
/// byte moves the ownership: do not release both.
///
/// Using a record again. Neither init nor decoding frees anything, since the memory that they are
/// given may never have been a record: release a used record first. Nothing of an earlier use of
/// the memory can then be reached through counts, arrays and functions of the codec. Memory that
/// never held a record must have a `korcg_type` of 0, for which TQX_markEmpty() cares, when a
/// decode that may fail is followed by TQX_release().
///
/// Threads. The functions keep no state. Any number of threads may call them, each with records,
/// buffers and contexts of its own.
///
/// TQX_init_<Name> gives every member its starting value and returns 0: the record type, for a main
/// block Sync1, Sync2 and BlockNumber, blanks for text of a fixed width, 10.0 for the C/N0 that
/// measurements derive, else 0. All elements of arrays are set. Takes any memory of that size.
///
/// TQX_append_<Name>_<Field> adds an element to a sub-block array, initialises it, points it to the
/// record, counts it and returns it. The array may move: earlier element pointers become invalid,
/// and the elements' own children still point to where it was, which only getters of messages mind
/// and set right. Takes an initialised or decoded record. The count is not guarded: a count field
/// of one byte wraps at the 256th element, so stop at 255 (65,535 where the field has two bytes).
///
/// TQX_encode_<Name> writes a main block's record as one framed block, every field that the type
/// had in its first edition at every revision but for content that a selecting field leaves out,
/// and of padding only that of the highest revision known then. What later editions added is
/// written in blocks of its revisions only. Takes an initialised or decoded record whose counts are
/// those of its arrays. An ID of 0 goes out as Revision and BlockNumber say, another one as it is
/// but for the revision, which is that of Revision unless this is 0.
/// - Entry lengths (SBLength, SB1Length and others): forced in the record to what is written at
/// revisions 0
///   and 1, and up to the highest known revision where they are 0. At revisions beyond that they go
///   out as the record holds them, and it is the caller who must store the true length.
/// - Fill: an entry whose content a selecting field chooses is filled with zeros up to the forced
///   length. Where nothing is forced there is no fill, nor is there any other padding.
/// - Success: the number of bits written. The record's Length, CRC and entry lengths are those of
///   the block, and the bits are added to its korcg_bits.
/// - Failure: the code of the last scalar field that did not fit; of the array or array element
///   that did not fit, when all scalar fields before it did; of the array whose count exceeds the
///   room in the record (..._INT_BUFFER_OVERFLOW). The content of the buffer is then unspecified up
///   to its size, for narrower fields after one that does not fit are still written; nothing is
///   ever written beyond. The record keeps its Length and CRC; entry lengths may be forced and
///   korcg_bits counts what was written. Encode it again into a larger buffer.
///
/// TQX_decode_<Name> decodes one record from bit `*offset` on and moves the offset. It is what
/// TQX_decode() and the decoders of owners call. `father` is null for a main block, else the record
/// that holds this one, which leads up to the main block's; `explicitLength` is the length of the
/// entry in bits, 0 for none. Fails also with the type's _SIZE_UNDERFLOW code when more bits were
/// consumed than the length, and _INTERNAL when the length leads past bit 0xffffffff or further
/// than 0x7fffffff bits. The record is left as TQX_decode() leaves it.

extern "C" {

/// Clears the context and enables every main block type.
TQX_CODEC_API void TQX_init_context(Kor::MessageApi::TQX_Context_s* context);

/// Decodes one framed block into `record`, which has room for the largest record
/// (TQX_AnyRecord_u) and owns no arrays. `buffer` starts with the sync characters; neither these
/// nor Length and CRC are checked, and bytes after the block are ignored. `context` may be null:
/// then every type decodes and no time is followed.
///
/// Success: the number of bits decoded. The record has the type's number at its head and owns its
/// arrays.
///
/// Failure, a negative code:
/// - the type's _DISABLED code when its bit in the context is clear: only ID and BlockNumber are
///   written, at their place in a TQX_MainHeader_s;
/// - TQX_invalidMessage when no type has the block number: likewise; or when the size
///   is 6 or less: nothing is read or written. A context remembers the record's BlockNumber;
/// - else the code of the last field that did not fit, or that of an entry that failed. The record
///   is of the type, and fields that were not read have their starting values. An array that was
///   not reached is null whatever its count says, and entries after one that failed are zeroed.
///   What was allocated stays in the record: call TQX_release(). The context has followed TOW if
///   that was read.
TQX_CODEC_API int32_t TQX_decode(Kor::MessageApi::TQX_Context_s* context, const uint8_t* buffer,
                                 uint16_t size, void* record);

/// Writes a main block's record with exactly the fields that decoding reads for its Revision and
/// its selecting fields, so that a decoded block comes back byte for byte. Entries shorter than
/// the sub-block length that the record holds are filled with zeros; Length and CRC are computed.
/// The record is not changed.
///
/// Returns the number of bits written, or the negative code of the last scalar field, or of the
/// array, that did not fit; then the buffer's content is unspecified up to its size. `record` must
/// be a main block's record, else the result is TQX_invalidMessage.
TQX_CODEC_API int32_t TQX_reencode(unsigned char* buffer, uint16_t bufferSize, const void* record);

/// Bytes that TQX_reencode() writes for one entry of a sub-block type under the given revision of
/// its main block, nested entries not counted, the longest content when a selector chooses it.
/// This is the value for the sub-block length field of a block built from scratch. 0 for an
/// unknown type.
TQX_CODEC_API uint32_t TQX_entrySize(uint32_t recordType, unsigned revision);

/// Frees the sub-block arrays of any record, with the arrays of their elements, by the type number
/// at its head. The record keeps its other values, has null arrays and zero counts afterwards and
/// can be released again. A record of type 0 or of an unknown type is left alone.
TQX_CODEC_API void TQX_release(void* record);

/// Name of a codec result: "TQX_ERR_NONE" from 0 on, "???" below the last code. Never null, and
/// valid as long as the library is loaded.
TQX_CODEC_API const char* TQX_errorName(int32_t code);
}
