#include "tqx/log/index/LogIdentity.h"

#include "tqx/log/index/Crc32.h"

#include <algorithm>
#include <vector>

namespace tqx
{

namespace
{

constexpr uint64_t endSize = 1 << 16;

/// The identity of the first `size` bytes of a file.
LogIdentity identityOf(const RandomAccess& file, uint64_t size)
{
    const auto sumAt = [&](uint64_t offset) {
        std::vector<uint8_t> bytes(static_cast<size_t>(std::min(endSize, size)));
        bytes.resize(file.readAt(offset, bytes.data(), bytes.size()));
        return crc32(bytes.data(), bytes.size());
    };
    return {size, sumAt(0), sumAt(size - std::min(endSize, size))};
}

} // namespace

LogIdentity LogIdentity::of(const RandomAccess& file)
{
    return identityOf(file, file.getSize());
}

LogIdentity::Match LogIdentity::compare(const RandomAccess& file) const
{
    if (file.getSize() < size)
        return Match::Other;
    const LogIdentity found = identityOf(file, size);
    if (found.first != first || found.last != last)
        return Match::Other;
    return file.getSize() == size ? Match::Same : Match::Longer;
}

} // namespace tqx
