#include "io/Spool.h"

#include "io/ToolError.h"
#include "tqx/log/source/FileSource.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <system_error>

namespace tqx::tool
{

Spool::Spool(const std::string& folder)
{
    const std::string name = ".tqx-input-" + std::to_string(std::random_device()());
    m_path = (std::filesystem::path(folder) / name).string();
    m_file = std::fopen(m_path.c_str(), "w+bx");
    if (!m_file)
        fail();
}

Spool::~Spool()
{
    std::fclose(m_file);
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

void Spool::fail() const
{
    throw ToolError("cannot keep standard input in " + m_path + ": " + std::strerror(errno));
}

void Spool::add(const uint8_t* bytes, size_t size)
{
    if (std::fwrite(bytes, 1, size, m_file) != size)
        fail();
}

std::unique_ptr<ByteSource> Spool::read()
{
    if (std::fflush(m_file) != 0 || std::fseek(m_file, 0, SEEK_SET) != 0)
        fail();
    return std::make_unique<FileSource>(m_file, "standard input");
}

} // namespace tqx::tool
