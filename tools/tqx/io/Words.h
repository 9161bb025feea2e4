#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tqx::tool
{

/// Messages on standard error. A visible progress line is wiped first. All functions may be called
/// from any thread.
namespace words
{

/// "tqx: <text>"; only further lines that begin with two blanks are kept. Control characters in it,
/// here and below, are escaped.
void say(std::string_view text);

/// "tqx: out of memory", without allocating any.
void sayOutOfMemory();

/// "tqx: <file>: <offset>: <text>"
void sayAt(std::string_view file, uint64_t offset, std::string_view text);

/// "<file>:<line>: <text>"
void sayLine(std::string_view file, uint64_t line, std::string_view text);

/// Limits messages of one kind: to the first ten, or not at all.
class Limit
{
public:
    explicit Limit(bool isVerbose) : m_isUnlimited(isVerbose) {}

    /// Whether one more may be written.
    bool admits()
    {
        constexpr uint64_t most = 10;
        if (m_isUnlimited || m_count++ < most)
            return true;
        ++m_others;
        return false;
    }

    /// Number of messages that were not written.
    uint64_t getOthers() const { return m_others; }

private:
    bool m_isUnlimited;
    uint64_t m_count = 0;
    uint64_t m_others = 0;
};

/// Whether standard error is a terminal on which a line can be overwritten, and standard output is
/// not a pipe: its reader may write to the same terminal.
bool canShowProgress();

/// Shows `text` on the current line of the terminal, over what was there and cut to its width; ""
/// wipes it. Right after data has gone to the terminal, nothing is shown.
void showProgress(std::string_view text);

/// To be called before data is written to standard output: clears the line for it if that is a
/// terminal, and suppresses progress for a second.
void makeWay();

} // namespace words

} // namespace tqx::tool
