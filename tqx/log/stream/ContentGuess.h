#pragma once

#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// What bytes without any TQX block seem to be.
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

/// Guesses from the first bytes of an input; a few thousand are enough. NMEA and RTCM must have
/// correct checksums and next to nothing else between them.
TQX_LOG_API Content guessContent(const uint8_t* bytes, size_t size, const Schema& schema = {});

/// "RINEX", "text", "compressed by gzip": what "it seems to be".
TQX_LOG_API const char* describeContent(Content content);

/// Whether a receiver may send only this, so that such a stream is not wrong.
TQX_LOG_API bool isReceiverOutput(Content content);

} // namespace tqx
