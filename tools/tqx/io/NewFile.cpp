#include "io/NewFile.h"

#include "io/ToolError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace tqx::tool
{

namespace fs = std::filesystem;

NewFile::NewFile(const std::string& target) : m_target(target)
{
    std::error_code missing;
    const fs::file_status status = fs::status(target, missing);
    if (fs::is_directory(status))
        throw ToolError(target + ": " + std::strerror(EISDIR));
    if (fs::exists(status)) {
        if (!fs::is_regular_file(status))
            throw ToolError(target + ": is not a regular file");
        if (::access(target.c_str(), W_OK) != 0)
            throw ToolError(target + ": " + std::strerror(errno));
        // Replaces not the link, but what it points to.
        m_target = fs::canonical(target).string();
    }
    constexpr int mostLeftBehind = 100;
    std::FILE* file = nullptr;
    for (int attempt = 1; !file && attempt <= mostLeftBehind; ++attempt) {
        m_path = m_target + ".part" + (attempt == 1 ? "" : std::to_string(attempt));
        file = std::fopen(m_path.c_str(), "wbx");
        if (!file && errno != EEXIST)
            break;
    }
    if (!file)
        throw ToolError(target + ": " + std::strerror(errno));
    std::fclose(file);
}

NewFile::~NewFile()
{
    if (!m_path.empty())
        std::remove(m_path.c_str());
}

void NewFile::putInPlace()
{
    if (std::rename(m_path.c_str(), m_target.c_str()) != 0)
        throw ToolError(m_target + ": " + std::strerror(errno));
    m_path.clear();
}

} // namespace tqx::tool
