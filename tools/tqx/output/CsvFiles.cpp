#include "output/CsvFiles.h"

#include "io/ToolError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx::tool
{

CsvFiles::CsvFiles(std::string directory) : m_directory(std::move(directory))
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
    m_files.push_back(std::move(file));
    return m_files.size() - 1;
}

void CsvFiles::append(size_t number, std::string_view text)
{
    Buffer& buffer = m_files[number]->buffer;
    if (buffer.size() + text.size() > pieceSize) {
        write(number, buffer.view());
        buffer.clear();
    }
    if (text.size() > pieceSize) {
        write(number, text);
    } else {
        buffer.append(text);
    }
}

void CsvFiles::flush()
{
    for (size_t number = 0; number < m_files.size(); ++number) {
        Buffer& buffer = m_files[number]->buffer;
        write(number, buffer.view());
        buffer.clear();
    }
}

void CsvFiles::close()
{
    flush();
    for (const size_t number : m_open)
        close(*m_files[number]);
    m_open.clear();
}

void CsvFiles::write(size_t number, std::string_view text)
{
    if (text.empty())
        return;
    File& file = *m_files[number];
    if (!file.stream)
        open(number);
    if (std::fwrite(text.data(), 1, text.size(), file.stream.get()) != text.size())
        fail(file);
}

void CsvFiles::open(size_t number)
{
    if (m_open.size() == mostOpen) {
        close(*m_files[m_open.front()]);
        m_open.pop_front();
    }
    File& file = *m_files[number];
    file.stream.reset(std::fopen(file.path.c_str(), file.isNew ? "wb" : "ab"));
    if (!file.stream)
        fail(file);
    file.isNew = false;
    std::setvbuf(file.stream.get(), nullptr, _IONBF, 0); // what is written has been collected
    m_open.push_back(number);
}

void CsvFiles::close(File& file)
{
    if (std::fclose(file.stream.release()) != 0)
        fail(file);
}

void CsvFiles::fail(const File& file)
{
    throw ToolError(file.path + ": " + std::strerror(errno));
}

} // namespace tqx::tool
