#pragma once

#include "TQX_codec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Kor::MessageApi
{

/// Formats of differential corrections: the values of the field "Mode" of DiffCorrIn.
constexpr uint8_t TQX_correctionFormats = 4; ///< 0 RTCM 2 words, 1 CMR, 2 RTCM 3, 3 RTCMV

/// Corrections as a receiver received them. Points into the record that they were taken from.
struct TQX_Corrections {
    const uint8_t* bytes;
    uint32_t size;
};

/// The corrections in a decoded DiffCorrIn, in the format that its Mode says; no bytes, and null,
/// for a Mode that is not a format. RTCM 2 comes in words of 32 bits.
inline TQX_Corrections TQX_correctionsOf(const TQX_DiffCorrIn_s& record)
{
    const auto part = [&record](const auto& payload) {
        // A length that is not a multiple of the words could point past the last.
        const size_t size = std::min<size_t>(record.Data_Byte_Length, sizeof payload);
        return TQX_Corrections{reinterpret_cast<const uint8_t*>(&payload),
                               static_cast<uint32_t>(size)};
    };
    switch (record.Mode) {
    case 0:
        return part(record.RTCM2Words);
    case 1:
        return part(record.CMRMessage);
    case 2:
        return part(record.RTCM3Message);
    case 3:
        return part(record.RTCMVMessage);
    default:
        return {nullptr, 0};
    }
}

} // namespace Kor::MessageApi
