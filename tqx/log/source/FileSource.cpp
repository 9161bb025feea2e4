#include "tqx/log/source/FileSource.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx
{

namespace
{

std::string errorText(int error)
{
    return std::generic_category().message(error);
}

} // namespace

FileSource::FileSource(const std::string& path)
    : m_name(path), m_stream(std::fopen(path.c_str(), "rb")), m_isOwned(true)
{
    if (m_stream == nullptr)
        throw SourceError(m_name + ": " + errorText(errno));
    // Reads are large; a second buffer would only cost a copy.
    std::setvbuf(m_stream, nullptr, _IONBF, 0);
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error)) {
        const uint64_t bytes = std::filesystem::file_size(path, error);
        m_size = error ? 0 : bytes;
    }
}

FileSource::FileSource(std::FILE* opened, std::string label)
    : m_name(std::move(label)), m_stream(opened), m_isOwned(false)
{
}

FileSource::~FileSource()
{
    if (m_isOwned)
        std::fclose(m_stream);
}

size_t FileSource::read(uint8_t* bytes, size_t capacity)
{
    const size_t count = std::fread(bytes, 1, capacity, m_stream);
    if (count == 0 && std::ferror(m_stream) != 0)
        throw SourceError(fmt::format("{}: {}: {}", m_name, m_position, errorText(errno)));
    m_position += count;
    return count;
}

uint64_t FileSource::skip(uint64_t count)
{
    if (m_position >= m_size)
        return ByteSource::skip(count);
    // A long has 32 bits on some systems.
    constexpr uint64_t farthest = 1 << 30;
    uint64_t skipped = 0;
    for (const uint64_t wanted = std::min(count, m_size - m_position); skipped < wanted;) {
        const uint64_t step = std::min(wanted - skipped, farthest);
        if (std::fseek(m_stream, static_cast<long>(step), SEEK_CUR) != 0)
            break;
        skipped += step;
        m_position += step;
    }
    return skipped == count ? skipped : skipped + ByteSource::skip(count - skipped);
}

} // namespace tqx
