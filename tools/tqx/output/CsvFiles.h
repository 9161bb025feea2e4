#pragma once

#include "tqx/log/text/Buffer.h"

#include <cstddef>
#include <cstdio>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tqx::tool
{

/// The files of a directory, written in parallel in large pieces. There may be more of them than a
/// process can have open.
class CsvFiles
{
public:
    /// Creates the directory if it does not exist. Throws ToolError.
    explicit CsvFiles(std::string directory);

    /// Adds an empty file of that name; returns its number. An existing file is replaced when
    /// something is written.
    size_t add(const std::string& name);

    /// Appends to a file. Throws as flush().
    void append(size_t file, std::string_view text);

    /// Writes everything out. Throws ToolError when a file cannot be written.
    void flush();

    /// Writes everything out and closes the files. Throws as flush().
    void close();

private:
    static constexpr size_t pieceSize = 1 << 16;
    static constexpr size_t mostOpen = 200;

    struct Close {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };
    struct File {
        std::string path;
        Buffer buffer;
        std::unique_ptr<std::FILE, Close> stream; ///< null while it is not open
        bool isNew = true;
    };

    void write(size_t number, std::string_view text);
    void open(size_t number);
    static void close(File& file);
    [[noreturn]] static void fail(const File& file);

    std::string m_directory;
    std::vector<std::unique_ptr<File>> m_files;
    std::deque<size_t> m_open; ///< those that are open, in the order in which they were opened
};

} // namespace tqx::tool
