#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace tool
{

/// Bytes of a file or of standard input, in pieces.
class Input
{
public:
    /// Opens `path`; "-" is standard input. Throws InputError with "<path>: <reason>".
    explicit Input(std::string path);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    /// Reads up to `capacity` bytes and returns how many, 0 at the end or once the
    /// program is interrupted. Does not wait for more
    /// than what a pipe holds. Throws InputError.
    size_t read(char* buffer, size_t capacity);

    /// Whether a read need not wait longer than `patience` milliseconds.
    bool isReady(int patience) const;

    /// Passes over `count` bytes, or as many as there are, and returns how many. Throws InputError.
    uint64_t skip(uint64_t count);

    /// Name for messages: the path, or "standard input".
    const std::string& getName() const { return name; }

    /// Size of a regular file in bytes, 0 when it is not known.
    uint64_t getSize() const { return size; }

private:
    std::string name;
    int descriptor;
    uint64_t size = 0;
};

} // namespace tool
