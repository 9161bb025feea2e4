#include "tqx/log/source/OpenSource.h"

#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileSource.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace tqx
{

namespace
{

/// A source whose first bytes were read to look at them.
class RestoredSource : public ByteSource
{
public:
    explicit RestoredSource(std::unique_ptr<ByteSource> opened) : source(std::move(opened)) {}

    Compression recognise()
    {
        while (count < first.size() && mayBeCompressed(first.data(), count)) {
            const size_t got = source->read(first.data() + count, 1);
            if (got == 0)
                break;
            count += got;
        }
        return compressionOf(first.data(), count);
    }

    size_t read(uint8_t* bytes, size_t capacity) override
    {
        if (given == count)
            return source->read(bytes, capacity);
        const size_t restored = std::min(capacity, count - given);
        std::memcpy(bytes, first.data() + given, restored);
        given += restored;
        return restored;
    }

    uint64_t skip(uint64_t wanted) override
    {
        const uint64_t restored = std::min<uint64_t>(wanted, count - given);
        given += static_cast<size_t>(restored);
        return restored == wanted ? restored : restored + source->skip(wanted - restored);
    }

    Place placeOf(uint64_t offset) const override { return source->placeOf(offset); }
    bool isInterrupted() const override { return source->isInterrupted(); }

private:
    std::unique_ptr<ByteSource> source;
    std::array<uint8_t, 4> first = {};
    size_t count = 0;
    size_t given = 0;
};

} // namespace

std::unique_ptr<ByteSource> openSource(const std::string& path)
{
    return decompressed(std::make_unique<FileSource>(path));
}

std::unique_ptr<ByteSource> decompressed(std::unique_ptr<ByteSource> source)
{
    auto restored = std::make_unique<RestoredSource>(std::move(source));
    const Compression compression = restored->recognise();
    if (compression == Compression::None)
        return restored;
    return std::make_unique<CompressedSource>(std::move(restored), compression);
}

} // namespace tqx
