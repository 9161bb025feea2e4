#pragma once

#include "io/Progress.h"
#include "io/UnpackedInput.h"

#include <functional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The lines of an input, which may be compressed, one by one.
class LineReader
{
public:
    /// Throws SourceError when the input cannot be opened. Reports to `progress` what is read;
    /// calls `beforeRead` before each read. Nothing is kept of lines longer than `longest` bytes.
    LineReader(const std::string& path, uint64_t longest, Progress& progress,
               std::function<void()> beforeRead);

    /// Gets the next line without its end; false at the end of the input. Throws SourceError.
    bool next(std::string& line);

    /// Whether the last line was too long; it is empty then.
    bool isTooLong() const { return m_tooLong; }

private:
    bool readOn();

    UnpackedInput m_input;
    uint64_t m_longest;
    Progress& m_progress;
    std::function<void()> m_beforeRead;
    std::vector<uint8_t> m_piece;
    size_t m_position = 0;
    size_t m_filled = 0;
    bool m_tooLong = false;
};

} // namespace tqx::tool
