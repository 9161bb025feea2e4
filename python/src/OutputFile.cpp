#include "OutputFile.h"

#include "tqx/log/DataError.h"

#include <zlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx::python
{

OutputFile::OutputFile(std::string path, bool isCompressed)
    : m_path(std::move(path)), m_partPath(m_path + ".part")
{
    errno = 0;
    if (isCompressed) {
        m_packed = gzopen(m_partPath.c_str(), "wb");
    } else {
        m_file = std::fopen(m_partPath.c_str(), "wb");
    }
    if (!m_file && !m_packed)
        fail();
}

OutputFile::~OutputFile()
{
    if (!m_file && !m_packed)
        return;
    if (m_packed)
        gzclose(m_packed);
    if (m_file)
        static_cast<void>(std::fclose(m_file));
    std::error_code ignored;
    std::filesystem::remove(m_partPath, ignored);
}

void OutputFile::fail() const
{
    throw DataError(m_path + ": " + (errno == 0 ? "cannot be written" : std::strerror(errno)));
}

void OutputFile::commit()
{
    constexpr size_t large = 1 << 20;
    if (m_buffer.size() >= large)
        flush();
}

void OutputFile::flush()
{
    errno = 0;
    const size_t size = m_buffer.size();
    const size_t written = m_packed ? gzfwrite(m_buffer.data(), 1, size, m_packed)
                                    : std::fwrite(m_buffer.data(), 1, size, m_file);
    m_buffer.clear();
    if (written != size)
        fail();
}

void OutputFile::finish()
{
    flush();
    const bool isWritten = m_packed ? gzclose(std::exchange(m_packed, nullptr)) == Z_OK
                                    : std::fclose(std::exchange(m_file, nullptr)) == 0;
    std::error_code error;
    if (isWritten)
        std::filesystem::rename(m_partPath, m_path, error);
    if (isWritten && !error)
        return;
    std::error_code ignored;
    std::filesystem::remove(m_partPath, ignored);
    if (error)
        throw DataError(m_path + ": " + error.message());
    fail();
}

} // namespace tqx::python
