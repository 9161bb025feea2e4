#pragma once

#include "io/Input.h"
#include "tqx/log/source/ByteSource.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace tqx::tool
{

/// The content of an input, decompressed if it begins like a gzip or a Zstandard file, whatever its
/// name. Offsets are those of the content.
class UnpackedInput : public ByteSource
{
public:
    /// Opens `path`; "-" is standard input. Throws SourceError with "<path>: <reason>". Nothing is
    /// read yet.
    explicit UnpackedInput(std::string path) : m_input(std::move(path)) {}

    /// As Input::read(). Everything before damage in a compressed input is returned before
    /// SourceError says where in the file it is.
    size_t read(uint8_t* bytes, size_t capacity) override;
    uint64_t skip(uint64_t count) override;
    bool isReady(std::chrono::milliseconds patience) override;
    Place placeOf(uint64_t offset) const override { return {getName(), offset}; }
    bool isInterrupted() const override { return m_input.isInterrupted(); }

    /// Name for messages: the path, or "standard input".
    const std::string& getName() const { return m_input.getName(); }

    /// Number of bytes of the stored input that were read or skipped since the last call.
    uint64_t takeProgress();

private:
    ByteSource& getContent();

    Input m_input;
    std::unique_ptr<ByteSource> m_content; ///< once the first bytes have been looked at
    uint64_t m_shown = 0;                  ///< bytes that takeProgress() has returned
};

} // namespace tqx::tool
