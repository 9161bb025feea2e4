#include "tqx/log/source/Decompressor.h"

#include "tqx/log/source/GzipDecompressor.h"
#include "tqx/log/source/ZstdDecompressor.h"

#include <algorithm>
#include <array>

namespace tqx
{

namespace
{

struct Signature {
    Compression compression;
    size_t size;
    std::array<uint8_t, 4> bytes;
    std::array<uint8_t, 4> mask;

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
    {Compression::Gzip, 3, {0x1f, 0x8b, 0x08, 0}, {0xff, 0xff, 0xff, 0}},
    {Compression::Zstd, 4, {0x28, 0xb5, 0x2f, 0xfd}, {0xff, 0xff, 0xff, 0xff}},
    // A frame to be skipped, which may come before others.
    {Compression::Zstd, 4, {0x50, 0x2a, 0x4d, 0x18}, {0xf0, 0xff, 0xff, 0xff}},
};

} // namespace

Decompressor::~Decompressor() = default;

Compression compressionOf(const uint8_t* bytes, size_t count)
{
    for (const Signature& signature : signatures) {
        if (count >= signature.size && signature.matches(bytes, count))
            return signature.compression;
    }
    return Compression::None;
}

bool mayBeCompressed(const uint8_t* bytes, size_t count)
{
    return std::any_of(std::begin(signatures), std::end(signatures),
                       [&](const Signature& signature) { return signature.matches(bytes, count); });
}

std::unique_ptr<Decompressor> Decompressor::make(Compression compression)
{
    switch (compression) {
    case Compression::Gzip:
        return std::make_unique<GzipDecompressor>();
    case Compression::Zstd:
        return std::make_unique<ZstdDecompressor>();
    case Compression::None:
        break;
    }
    return nullptr;
}

} // namespace tqx
