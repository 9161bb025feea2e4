#include "output/CsvFiles.h"

#include "io/ToolError.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx::tool
{

CsvFiles::CsvFiles(std::string path) : m_directory(std::move(path))
{
    std::error_code error;
    std::filesystem::create_directories(m_directory, error);
    std::error_code unknown;
    if (error || !std::filesystem::is_directory(m_directory, unknown))
        throw ToolError(m_directory + ": " + (error ? error.message() : "Not a directory"));
}

size_t CsvFiles::add(const std::string& name)
{
    auto file = std::make_unique<File>();
    file->path = (std::filesystem::path(m_directory) / name).string();
    file->isNew = true;
    m_files.push_back(std::move(file));
    return m_files.size() - 1;
}

void CsvFiles::flush()
{
    for (const std::unique_ptr<File>& file : m_files)
        write(*file);
}

void CsvFiles::write(File& file)
{
    Buffer& buffer = file.buffer;
    if (buffer.size() == 0)
        return;
    std::FILE* stream = std::fopen(file.path.c_str(), file.isNew ? "wb" : "ab");
    bool written = stream != nullptr;
    if (stream) {
        written = std::fwrite(buffer.data(), 1, buffer.size(), stream) == buffer.size();
        written = std::fclose(stream) == 0 && written;
    }
    file.isNew = false;
    buffer.clear();
    if (!written)
        throw ToolError(file.path + ": " + std::strerror(errno));
}

} // namespace tqx::tool
