#include "tqx/log/source/FileAccess.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

// The only place where the library calls the system directly: for reads at an offset by several
// threads and for files mapped into memory. Everything else uses the C library.
#if defined(__unix__) || defined(__APPLE__)
#define TQX_POSIX_FILES 1
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#define TQX_POSIX_FILES 0
#include <cstdio>
#include <filesystem>
#include <mutex>
#endif

namespace tqx
{

namespace
{

[[noreturn]] void fail(const std::string& name, const std::string& reason)
{
    throw SourceError(name + ": " + reason);
}

std::string errorText(int error)
{
    return std::generic_category().message(error);
}

} // namespace

#if TQX_POSIX_FILES

class FileAccess::OpenFile
{
public:
    explicit OpenFile(const std::string& path)
        : m_descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (m_descriptor < 0)
            fail(path, errorText(errno));
        struct stat status = {};
        const int error = ::fstat(m_descriptor, &status) == 0 ? 0 : errno;
        if (error != 0 || !S_ISREG(status.st_mode)) {
            ::close(m_descriptor);
            fail(path, error != 0 ? errorText(error) : "is not a regular file");
        }
        m_size = static_cast<uint64_t>(status.st_size);
    }

    ~OpenFile()
    {
        if (m_view != nullptr)
            ::munmap(m_view, static_cast<size_t>(m_size));
        ::close(m_descriptor);
    }

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    uint64_t getSize() const { return m_size; }

    /// Null when that does not work; reading does then.
    const uint8_t* map()
    {
        if (m_size == 0 || m_size > SIZE_MAX / 2)
            return nullptr;
        void* found =
            ::mmap(nullptr, static_cast<size_t>(m_size), PROT_READ, MAP_SHARED, m_descriptor, 0);
        if (found == MAP_FAILED)
            return nullptr;
        m_view = found;
        return static_cast<const uint8_t*>(m_view);
    }

    /// Bytes read, 0 at the end of the file; -1 with errno on failure.
    int64_t read(uint64_t offset, uint8_t* bytes, size_t count)
    {
        ssize_t got = 0;
        do {
            got = ::pread(m_descriptor, bytes, count, static_cast<off_t>(offset));
        } while (got < 0 && errno == EINTR);
        return got;
    }

private:
    int m_descriptor;
    uint64_t m_size = 0;
    void* m_view = nullptr;
};

#else

class FileAccess::OpenFile
{
public:
    explicit OpenFile(const std::string& path) : m_stream(std::fopen(path.c_str(), "rb"))
    {
        if (m_stream == nullptr)
            fail(path, errorText(errno));
        std::error_code error;
        m_size = std::filesystem::file_size(path, error);
        if (error) {
            std::fclose(m_stream);
            fail(path, error.message());
        }
    }

    ~OpenFile() { std::fclose(m_stream); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    uint64_t getSize() const { return m_size; }
    const uint8_t* map() { return nullptr; }

    int64_t read(uint64_t offset, uint8_t* bytes, size_t count)
    {
        // fseek takes a long, which has 32 bits on some systems.
        constexpr uint64_t farthest = 1 << 30;
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::rewind(m_stream);
        for (uint64_t left = offset; left != 0;) {
            const uint64_t step = std::min(left, farthest);
            if (std::fseek(m_stream, static_cast<long>(step), SEEK_CUR) != 0)
                return -1;
            left -= step;
        }
        const size_t got = std::fread(bytes, 1, count, m_stream);
        return got == 0 && std::ferror(m_stream) != 0 ? -1 : static_cast<int64_t>(got);
    }

private:
    std::FILE* m_stream;
    std::mutex m_mutex;
    uint64_t m_size = 0;
};

#endif

FileAccess::FileAccess(const std::string& path, Mapping mapping)
    : m_name(path), m_file(std::make_unique<OpenFile>(path)), m_size(m_file->getSize())
{
    if (mapping == Mapping::IfPossible)
        m_mapped = m_file->map();
}

FileAccess::~FileAccess() = default;

size_t FileAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= m_size || count == 0)
        return 0;
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(count, m_size - offset));
    if (m_mapped != nullptr) {
        std::memcpy(bytes, m_mapped + offset, wanted);
        return wanted;
    }
    for (size_t done = 0; done < wanted;) {
        const int64_t got = m_file->read(offset + done, bytes + done, wanted - done);
        if (got <= 0) {
            throw SourceError(fmt::format("{}: {}: {}", m_name, offset + done,
                                          got < 0 ? errorText(errno) : "the file has shrunk"));
        }
        done += static_cast<size_t>(got);
    }
    return wanted;
}

} // namespace tqx
