#pragma once

#include "tqx/log/source/ByteSource.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tqx::tool
{

/// Bytes of a file or of standard input, in pieces.
class Input : public ByteSource
{
public:
    /// Opens `path`; "-" is standard input. Throws SourceError with "<path>: <reason>".
    explicit Input(std::string path);
    ~Input() override;
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// Reads up to `capacity` bytes and returns how many, 0 at the end or once the
    /// program is interrupted. Returns what a pipe holds without waiting for more. Throws
    /// SourceError.
    size_t read(uint8_t* bytes, size_t capacity) override;

    bool isReady(std::chrono::milliseconds patience) override;

    uint64_t skip(uint64_t count) override;

    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }

    bool isInterrupted() const override;

    /// Name for messages: the path, or "standard input".
    const std::string& getName() const { return m_name; }

    /// Size of a regular file in bytes, 0 when it is not known.
    uint64_t getSize() const { return m_size; }

    /// Number of bytes read or skipped so far.
    uint64_t getPosition() const { return m_position; }

private:
    std::string m_name;
    int m_descriptor;
    uint64_t m_size = 0;
    uint64_t m_position = 0;
};

} // namespace tqx::tool
