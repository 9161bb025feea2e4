#pragma once

#include "io/Sink.h"
#include "tqx/log/text/Buffer.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The files of a directory, written in turns. None stays open between two pieces.
class CsvFiles : public Sink
{
public:
    /// Makes the directory if it is not there. Throws ToolError.
    explicit CsvFiles(std::string directory);

    /// A new file of that name, empty so far; returns its number. One that was there is replaced.
    size_t add(const std::string& name);

    /// What is to be written next to a file.
    Buffer& getBuffer(size_t file) { return m_files[file]->buffer; }

    /// Writes out what has become big of a file. Throws as flush().
    void commit(size_t file)
    {
        if (m_files[file]->buffer.size() >= pieceSize)
            write(*m_files[file]);
    }

    void commit() override {}
    void flush() override;

private:
    static constexpr size_t pieceSize = 1 << 16;

    struct File {
        std::string path;
        Buffer buffer;
        bool isNew;
    };

    void write(File& file);

    std::string m_directory;
    std::vector<std::unique_ptr<File>> m_files;
};

} // namespace tqx::tool
