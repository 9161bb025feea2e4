#pragma once

#include "Buffer.h"

#include <cstdio>
#include <string>

namespace tool
{

/// The data a command produces: one buffer, written in big pieces to standard output or a file.
class Output
{
public:
    /// Standard output.
    Output();

    /// A new file, or standard output for "-". Throws ToolError when it cannot be created.
    explicit Output(const std::string& path);

    /// Drops what has not been flushed.
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// What is to be written next; append to it, then call commit().
    Buffer& getBuffer() { return buffer; }

    /// Writes the buffer out once it is big. Throws as flush().
    void commit()
    {
        if (buffer.size() >= pieceSize)
            flush();
    }

    /// Writes everything out. Throws ClosedPipe when nobody reads any more, ToolError when
    /// writing fails otherwise.
    void flush();

private:
    static constexpr size_t pieceSize = 1 << 16;

    std::string name;
    std::FILE* file;
    Buffer buffer;
};

} // namespace tool
