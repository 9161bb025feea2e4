#pragma once

namespace tqx::tool
{

/// Exit status of the program.
enum class ExitStatus : int {
    Done = 0,      ///< did what was asked
    Failed = 1,    ///< could not: bad argument, unreadable file, no block, bad input line
    Damaged = 2,   ///< did it, but under --strict the stream turned out to be damaged
    FellShort = 3, ///< did it, but a figure does not meet report --require
};

/// The more severe of two: Failed, then FellShort, then Damaged, then Done.
inline ExitStatus worse(ExitStatus a, ExitStatus b)
{
    if (a == ExitStatus::Failed || b == ExitStatus::Failed)
        return ExitStatus::Failed;
    return static_cast<int>(a) > static_cast<int>(b) ? a : b;
}

} // namespace tqx::tool
