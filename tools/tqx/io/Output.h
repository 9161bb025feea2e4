#pragma once

#include "io/Sink.h"
#include "tqx/log/text/Buffer.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace tqx::tool
{

/// The output of a command: one buffer, written in large pieces to standard output or a file.
class Output final : public Sink
{
public:
    /// Standard output.
    Output();

    /// A new file, or standard output for "-". Throws ToolError when it cannot be created.
    explicit Output(const std::string& path);

    /// Discards what has not been flushed.
    ~Output() override;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// Writes these characters, bypassing the buffer, and everything held back on the way. Throws
    /// as flush().
    void write(std::string_view text);

    /// The output buffer; append to it, then call commit().
    Buffer& getBuffer() { return m_buffer; }

    void commit() override
    {
        if (m_buffer.size() >= pieceSize)
            flush();
    }

    void flush() override;

private:
    static constexpr size_t pieceSize = 1 << 16;

    std::string m_name;
    std::FILE* m_file;
    Buffer m_buffer;
};

} // namespace tqx::tool
