#include "tqx/log/source/OpenSource.h"

#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileSource.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <utility>

namespace tqx
{

namespace
{

/// A source whose first bytes have been peeked at.
class RestoredSource : public ByteSource
{
public:
    explicit RestoredSource(std::unique_ptr<ByteSource> opened) : m_source(std::move(opened)) {}

    Compression recognise()
    {
        while (m_count < m_first.size() && mayBeCompressed(m_first.data(), m_count)) {
            const size_t got = m_source->read(m_first.data() + m_count, 1);
            if (got == 0)
                break;
            m_count += got;
        }
        return compressionOf(m_first.data(), m_count);
    }

    size_t read(uint8_t* bytes, size_t capacity) override
    {
        if (m_given == m_count)
            return m_source->read(bytes, capacity);
        const size_t restored = std::min(capacity, m_count - m_given);
        std::memcpy(bytes, m_first.data() + m_given, restored);
        m_given += restored;
        return restored;
    }

    uint64_t skip(uint64_t wanted) override
    {
        const uint64_t restored = std::min<uint64_t>(wanted, m_count - m_given);
        m_given += static_cast<size_t>(restored);
        return restored == wanted ? restored : restored + m_source->skip(wanted - restored);
    }

    bool isReady(std::chrono::milliseconds patience) override
    {
        return m_given != m_count || m_source->isReady(patience);
    }

    Place placeOf(uint64_t offset) const override { return m_source->placeOf(offset); }
    bool isInterrupted() const override { return m_source->isInterrupted(); }

private:
    std::unique_ptr<ByteSource> m_source;
    std::array<uint8_t, 4> m_first = {};
    size_t m_count = 0;
    size_t m_given = 0;
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
