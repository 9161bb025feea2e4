#pragma once

#include "TQX_Edition.h"
#include "TQX_Format.h"
#include "tqx_codec_export.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// Byte of the enable mask that holds the bit of a record type of the first edition.
constexpr unsigned TQX_enableByte(unsigned recordType)
{
    return (recordType + 1) / 8;
}

/// Bit of a record type of the first edition within its byte of the enable mask.
constexpr uint8_t TQX_enableBit(unsigned recordType)
{
    return static_cast<uint8_t>(0x80U >> (recordType % 8));
}

/// The state that decoding carries from block to block. Plain, owned by the caller, copyable by
/// value; TQX_init_context() prepares it.
struct TQX_Context_s {
    /// One bit per record type e of the first edition: byte (e + 1) / 8, bit 0x80 >> (e mod 8). A
    /// set bit lets the type be decoded.
    uint8_t enableMask[TQX_enableByte(TQX_lastFirstRecordType) + 1];
    /// Block number of the last block that matched no known type.
    uint16_t lastUnknownBlockNumber;
    /// Week rollovers seen since the context was initialised; wraps from 255 to 0.
    uint8_t weekCounter;
    /// TOW of the last block that carried a valid one, in milliseconds.
    uint32_t lastTOW;
#if TQX_HAS_LATER_TYPES
    /// Likewise for types of later editions, e counted from the first of them: byte e / 8, bit
    /// 0x80 >> (e mod 8). Has room for future types.
    uint8_t laterMask[TQX_laterRecordTypes / 8];
#endif
};

/// Whether the type may be decoded; without a context every type may. False for numbers beyond the
/// last record type.
inline bool TQX_isEnabled(const TQX_Context_s* context, unsigned recordType)
{
    if (context == nullptr)
        return true;
#if TQX_HAS_LATER_TYPES
    if (recordType > TQX_lastFirstRecordType) {
        const unsigned e = recordType - TQX_lastFirstRecordType - 1;
        return e < TQX_laterRecordTypes && (context->laterMask[e / 8] & 0x80U >> (e % 8)) != 0;
    }
#endif
    return recordType <= TQX_lastFirstRecordType &&
           (context->enableMask[TQX_enableByte(recordType)] & TQX_enableBit(recordType)) != 0;
}

/// Lets a type be decoded or not. Numbers beyond the last record type are ignored.
inline void TQX_enable(TQX_Context_s& context, unsigned recordType, bool isEnabled)
{
    uint8_t* byte = nullptr;
    uint8_t bit = TQX_enableBit(recordType);
    if (recordType <= TQX_lastFirstRecordType)
        byte = &context.enableMask[TQX_enableByte(recordType)];
#if TQX_HAS_LATER_TYPES
    if (const unsigned e = recordType - TQX_lastFirstRecordType - 1;
        recordType > TQX_lastFirstRecordType && e < TQX_laterRecordTypes) {
        byte = &context.laterMask[e / 8];
        bit = static_cast<uint8_t>(0x80U >> (e % 8));
    }
#endif
    if (byte != nullptr)
        *byte = static_cast<uint8_t>(isEnabled ? *byte | bit : *byte & ~bit);
}

/// Whether a block at `tow` begins a week for a context that has followed `lastTOW`: it is more
/// than two days before that.
constexpr bool TQX_beginsWeek(uint32_t tow, uint32_t lastTOW)
{
    constexpr uint32_t twoDays = TQX_millisPerDay * 2;
    return tow + twoDays < lastTOW;
}

/// Continuous time of a block in milliseconds since the start of the week of the first block that
/// the context has seen, modulo 2^32; all ones without a context or with a do-not-use `tow`.
/// A step back by more than two days counts as a week rollover.
inline uint32_t TQX_continuousTime(TQX_Context_s* context, uint32_t tow)
{
    if (context == nullptr || tow == TQX_noTOW)
        return TQX_noTOW;
    if (TQX_beginsWeek(tow, context->lastTOW))
        ++context->weekCounter;
    context->lastTOW = tow;
    return context->weekCounter * TQX_millisPerWeek + tow;
}

} // namespace Kor::MessageApi
