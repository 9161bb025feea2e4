#pragma once

namespace tqx::tool
{

/// Exit status of the program.
enum class ExitStatus : int {
    Done = 0,    ///< did what was asked
    Failed = 1,  ///< could not do it: bad argument, unreadable file, no block, bad input line
    Damaged = 2, ///< did it, but under --strict the stream turned out to be damaged
};

/// The graver of two: Failed, then Damaged, then Done.
inline ExitStatus worse(ExitStatus a, ExitStatus b)
{
    if (a == ExitStatus::Failed || b == ExitStatus::Failed)
        return ExitStatus::Failed;
    return a == ExitStatus::Damaged ? a : b;
}

} // namespace tqx::tool
