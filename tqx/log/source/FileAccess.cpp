#include "tqx/log/source/FileAccess.h"

#include "tqx/log/DataError.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

// The one place of the library that asks the system directly: reads at an offset that threads share
// and files mapped into memory. Everywhere else it goes by the C library.
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
        : descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (descriptor < 0)
            fail(path, errorText(errno));
        struct stat status = {};
        const int error = ::fstat(descriptor, &status) == 0 ? 0 : errno;
        if (error != 0 || !S_ISREG(status.st_mode)) {
            ::close(descriptor);
            fail(path, error != 0 ? errorText(error) : "is not a regular file");
        }
        size = static_cast<uint64_t>(status.st_size);
    }

    ~OpenFile()
    {
        if (view != nullptr)
            ::munmap(view, static_cast<size_t>(size));
        ::close(descriptor);
    }

    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    uint64_t getSize() const { return size; }

    /// Null when that does not work; reading does then.
    const uint8_t* map()
    {
        if (size == 0 || size > SIZE_MAX / 2)
            return nullptr;
        void* found =
            ::mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_SHARED, descriptor, 0);
        if (found == MAP_FAILED)
            return nullptr;
        view = found;
        return static_cast<const uint8_t*>(view);
    }

    /// Bytes read, 0 at the end of the file; -1 with errno on failure.
    int64_t read(uint64_t offset, uint8_t* bytes, size_t count)
    {
        ssize_t got = 0;
        do
            got = ::pread(descriptor, bytes, count, static_cast<off_t>(offset));
        while (got < 0 && errno == EINTR);
        return got;
    }

private:
    int descriptor;
    uint64_t size = 0;
    void* view = nullptr;
};

#else

class FileAccess::OpenFile
{
public:
    explicit OpenFile(const std::string& path) : stream(std::fopen(path.c_str(), "rb"))
    {
        if (stream == nullptr)
            fail(path, errorText(errno));
        std::error_code error;
        size = std::filesystem::file_size(path, error);
        if (error) {
            std::fclose(stream);
            fail(path, error.message());
        }
    }

    ~OpenFile() { std::fclose(stream); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    uint64_t getSize() const { return size; }
    const uint8_t* map() { return nullptr; }

    int64_t read(uint64_t offset, uint8_t* bytes, size_t count)
    {
        // fseek takes a long, which some systems give 32 bits.
        constexpr uint64_t farthest = 1 << 30;
        const std::lock_guard<std::mutex> lock(mutex);
        std::rewind(stream);
        for (uint64_t left = offset; left != 0;) {
            const uint64_t step = std::min(left, farthest);
            if (std::fseek(stream, static_cast<long>(step), SEEK_CUR) != 0)
                return -1;
            left -= step;
        }
        const size_t got = std::fread(bytes, 1, count, stream);
        return got == 0 && std::ferror(stream) != 0 ? -1 : static_cast<int64_t>(got);
    }

private:
    std::FILE* stream;
    std::mutex mutex;
    uint64_t size = 0;
};

#endif

FileAccess::FileAccess(const std::string& path, Mapping mapping)
    : name(path), file(std::make_unique<OpenFile>(path)), size(file->getSize())
{
    if (mapping == Mapping::IfPossible)
        mapped = file->map();
}

FileAccess::~FileAccess() = default;

size_t FileAccess::readAt(uint64_t offset, uint8_t* bytes, size_t count) const
{
    if (offset >= size || count == 0)
        return 0;
    const auto wanted = static_cast<size_t>(std::min<uint64_t>(count, size - offset));
    if (mapped != nullptr) {
        std::memcpy(bytes, mapped + offset, wanted);
        return wanted;
    }
    for (size_t done = 0; done < wanted;) {
        const int64_t got = file->read(offset + done, bytes + done, wanted - done);
        if (got <= 0)
            throw SourceError(
                fmt::format("{}: {}: {}", name, offset + done,
                            got < 0 ? errorText(errno) : "the file has become shorter"));
        done += static_cast<size_t>(got);
    }
    return wanted;
}

} // namespace tqx
