#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tqx::tool
{

/// Messages to standard error. A progress line that is there is wiped first. All of this may
/// be called from any thread.
namespace words
{

/// "tqx: <text>", of which lines after the first are kept that begin with two blanks. Control
/// characters in it, here and below, are escaped.
void say(std::string_view text);

/// "tqx: out of memory", without taking any.
void sayOutOfMemory();

/// "tqx: <file>: <offset>: <text>"
void sayAt(std::string_view file, uint64_t offset, std::string_view text);

/// "<file>:<line>: <text>"
void sayLine(std::string_view file, uint64_t line, std::string_view text);

/// How many words of one kind are said: the first ten, or all.
class Limit
{
public:
    explicit Limit(bool isVerbose) : m_isUnlimited(isVerbose) {}

    /// Whether one more may be said.
    bool admits()
    {
        constexpr uint64_t most = 10;
        if (m_isUnlimited || m_count++ < most)
            return true;
        ++m_others;
        return false;
    }

    /// Those that were not.
    uint64_t getOthers() const { return m_others; }

private:
    bool m_isUnlimited;
    uint64_t m_count = 0;
    uint64_t m_others = 0;
};

/// Whether standard error is a terminal on which a line can be written over, and standard output no
/// pipe: what is after one may write to the same terminal.
bool canShowProgress();

/// Shows `text` on the current line of the terminal, over what was there and cut to its width; ""
/// wipes it. Where data has just gone to the terminal, nothing is shown.
void showProgress(std::string_view text);

/// To be called before data is written to standard output: clears the line for it if that is a
/// terminal, and keeps progress away for a second.
void makeWay();

} // namespace words

} // namespace tqx::tool
