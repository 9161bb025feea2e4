#include "tqx/log/source/ByteSource.h"

#include <algorithm>
#include <vector>

namespace tqx
{

ByteSource::~ByteSource() = default;

bool ByteSource::isReady(std::chrono::milliseconds)
{
    return true;
}

uint64_t ByteSource::skip(uint64_t count)
{
    std::vector<uint8_t> piece(1 << 16);
    uint64_t skipped = 0;
    while (skipped < count) {
        const size_t got = read(piece.data(), std::min<uint64_t>(piece.size(), count - skipped));
        if (got == 0)
            break;
        skipped += got;
    }
    return skipped;
}

} // namespace tqx
