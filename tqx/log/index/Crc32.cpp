#include "tqx/log/index/Crc32.h"

#include <zlib.h>

namespace tqx
{

uint32_t crc32(const uint8_t* bytes, size_t size)
{
    return static_cast<uint32_t>(::crc32_z(0, bytes, size));
}

} // namespace tqx
