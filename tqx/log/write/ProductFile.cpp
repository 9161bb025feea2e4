#include "tqx/log/write/ProductFile.h"

#include "tqx/log/DataError.h"

#include <zlib.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx
{

ProductFile::ProductFile(std::string path, bool isCompressed)
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

ProductFile::~ProductFile()
{
    if (!m_file && !m_packed)
        return;
    close();
    std::error_code ignored;
    std::filesystem::remove(m_partPath, ignored);
}

void ProductFile::fail() const
{
    throw DataError(m_path + ": " + (errno == 0 ? "cannot be written" : std::strerror(errno)));
}

void ProductFile::flush()
{
    errno = 0;
    const size_t size = m_buffer.size();
    const size_t written = m_packed ? gzfwrite(m_buffer.data(), 1, size, m_packed)
                                    : std::fwrite(m_buffer.data(), 1, size, m_file);
    m_buffer.clear();
    if (written != size)
        fail();
}

bool ProductFile::close()
{
    const bool isWritten = m_packed ? gzclose(m_packed) == Z_OK : std::fclose(m_file) == 0;
    m_packed = nullptr;
    m_file = nullptr;
    return isWritten;
}

void ProductFile::finish()
{
    flush();
    std::error_code error;
    if (close()) {
        std::filesystem::rename(m_partPath, m_path, error);
        if (!error)
            return;
    }
    std::error_code ignored;
    std::filesystem::remove(m_partPath, ignored);
    if (error)
        throw DataError(m_path + ": " + error.message());
    fail();
}

} // namespace tqx
