#pragma once

#include "tqx_codec_export.h"

#include <cstdint>

namespace Kor::MessageApi
{

/// What decoding carries from block to block. Plain, owned by the caller, copyable by value;
/// TQX_init_context() prepares it.
struct TQX_Context_s {
    /// One bit per record type e: byte (e + 1) / 8, bit 0x80 >> (e mod 8). A set bit lets the type
    /// be decoded.
    uint8_t enableMask[48];
    /// Block number of the last block that matched no known type.
    uint16_t lastUnknownBlockNumber;
    /// Week rollovers seen since the context was initialised; wraps from 255 to 0.
    uint8_t weekCounter;
    /// TOW of the last block that carried a valid one, in milliseconds.
    uint32_t lastTOW;
};

/// Byte of the enable mask that holds the bit of a record type.
constexpr unsigned TQX_enableByte(unsigned recordType)
{
    return (recordType + 1) / 8;
}

/// Bit of a record type within its byte of the enable mask.
constexpr uint8_t TQX_enableBit(unsigned recordType)
{
    return static_cast<uint8_t>(0x80U >> (recordType % 8));
}

/// Whether the type may be decoded; without a context every type may.
inline bool TQX_isEnabled(const TQX_Context_s* context, unsigned recordType)
{
    return context == nullptr ||
           (context->enableMask[TQX_enableByte(recordType)] & TQX_enableBit(recordType)) != 0;
}

/// Continuous time of a block in milliseconds since the start of the week of the first block that
/// the context has seen, modulo 2^32; all ones without a context or with a do-not-use `tow`.
/// A step back by more than two days counts as a week rollover.
inline uint32_t TQX_continuousTime(TQX_Context_s* context, uint32_t tow)
{
    constexpr uint32_t unset = 0xffffffffU;
    constexpr uint32_t twoDays = 172800000U;
    constexpr uint32_t week = 604800000U;
    if (context == nullptr || tow == unset)
        return unset;
    if (tow + twoDays < context->lastTOW)
        ++context->weekCounter;
    context->lastTOW = tow;
    return context->weekCounter * week + tow;
}

} // namespace Kor::MessageApi
