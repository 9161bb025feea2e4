#pragma once

#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// What bytes that hold no TQX block seem to be.
enum class Content {
    Unknown,
    DamagedTqx,
    Text,
    JsonLines,
    Gzip,
    Zstandard,
    Xz,
    Bzip2,
    Zip,
    Rinex,
    CompactRinex,
    Nmea,
    Rtcm2,
    Rtcm3,
    NmeaAndRtcm3,
};

/// Guesses by the first bytes of an input; a few thousand are enough. NMEA and RTCM need right
/// checksums, and nearly nothing else beside them.
TQX_LOG_API Content guessContent(const uint8_t* bytes, size_t size, const Schema& schema = {});

/// "RINEX", "text", "compressed by gzip": what "it seems to be".
TQX_LOG_API const char* describeContent(Content content);

/// Whether a receiver sends it on its own, so that a stream of it alone is nothing wrong.
TQX_LOG_API bool isReceiverOutput(Content content);

} // namespace tqx
