#include "io/Input.h"

#include "io/Interrupt.h"
#include "io/ToolError.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tqx::tool
{

Input::Input(std::string path)
    : m_name(path == "-" ? "standard input" : path),
      m_descriptor(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (m_descriptor < 0)
        throw SourceError(m_name + ": " + std::strerror(errno));
    struct stat status = {};
    if (::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode))
        m_size = static_cast<uint64_t>(status.st_size);
}

Input::~Input()
{
    if (m_descriptor != STDIN_FILENO)
        ::close(m_descriptor);
}

size_t Input::read(uint8_t* bytes, size_t capacity)
{
    while (!interrupt::hasCome()) {
        const ssize_t count = ::read(m_descriptor, bytes, capacity);
        if (count >= 0) {
            m_position += static_cast<uint64_t>(count);
            return static_cast<size_t>(count);
        }
        if (errno != EINTR)
            throw SourceError(m_name + ": " + std::strerror(errno));
    }
    return 0;
}

bool Input::isReady(std::chrono::milliseconds patience)
{
    pollfd wanted = {m_descriptor, POLLIN, 0};
    return ::poll(&wanted, 1, static_cast<int>(patience.count())) != 0;
}

bool Input::isInterrupted() const
{
    return interrupt::hasCome();
}

uint64_t Input::skip(uint64_t count)
{
    if (m_size != 0) {
        const uint64_t skipped = std::min(count, m_size);
        if (::lseek(m_descriptor, static_cast<off_t>(skipped), SEEK_CUR) >= 0) {
            m_position += skipped;
            return skipped;
        }
    }
    return ByteSource::skip(count);
}

} // namespace tqx::tool
