#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>

namespace tqx
{

/// CRC-32 as in gzip and PNG; of "123456789" it is 0xcbf43926.
TQX_LOG_API uint32_t crc32(const uint8_t* bytes, size_t size);

} // namespace tqx
