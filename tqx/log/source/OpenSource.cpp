#include "tqx/log/source/OpenSource.h"

#include "tqx/log/source/FileSource.h"
#include "tqx/log/source/GzipSource.h"
#include "tqx/log/source/ZstdSource.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace tqx
{

namespace
{

enum class Format { Plain, Gzip, Zstd };

struct Signature {
    Format format;
    std::array<uint8_t, 4> bytes;
    std::array<uint8_t, 4> mask;
    size_t size;

    bool matches(const uint8_t* found, size_t count) const
    {
        for (size_t i = 0; i < std::min(count, size); ++i) {
            if ((found[i] & mask[i]) != bytes[i])
                return false;
        }
        return true;
    }
};

constexpr Signature signatures[] = {
    {Format::Gzip, {0x1f, 0x8b, 0x08}, {0xff, 0xff, 0xff}, 3},
    {Format::Zstd, {0x28, 0xb5, 0x2f, 0xfd}, {0xff, 0xff, 0xff, 0xff}, 4},
    // A frame to be skipped, which may come before others.
    {Format::Zstd, {0x50, 0x2a, 0x4d, 0x18}, {0xf0, 0xff, 0xff, 0xff}, 4},
};

/// A source whose first bytes were read to look at them.
class RestoredSource : public ByteSource
{
public:
    explicit RestoredSource(std::unique_ptr<ByteSource> opened) : source(std::move(opened)) {}

    Format recognise()
    {
        for (;;) {
            bool mayMatch = false;
            for (const Signature& signature : signatures) {
                const bool matches = signature.matches(first.data(), count);
                if (matches && count >= signature.size)
                    return signature.format;
                mayMatch |= matches;
            }
            if (!mayMatch)
                return Format::Plain;
            const size_t got = source->read(first.data() + count, 1);
            if (got == 0)
                return Format::Plain;
            count += got;
        }
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
    switch (restored->recognise()) {
    case Format::Gzip:
        return std::make_unique<GzipSource>(std::move(restored));
    case Format::Zstd:
        return std::make_unique<ZstdSource>(std::move(restored));
    case Format::Plain:
        break;
    }
    return restored;
}

} // namespace tqx
