#pragma once

#include "tqx/log/time/GnssTime.h"

#include <optional>
#include <set>
#include <string>

namespace tqx::tool
{

/// The names of the files that a log is split into.
class PartNames
{
public:
    /// `target` is a folder, which is created, or a path with {number} or {time} in it, and maybe
    /// {name}, which becomes `name`. In a folder, files are named by `pattern`. Throws ToolError.
    PartNames(const std::string& target, std::string pattern, std::string name);

    /// The name of the next part, which begins at `time`. Names are unique: where the pattern
    /// repeats one, a number is added.
    std::string next(const std::optional<GnssMillis>& time);

private:
    std::string m_pattern;
    std::string m_name;
    unsigned m_number = 0;
    std::set<std::string> m_given;
};

/// The base name for files made from an input: its path without folders and extensions such as
/// .tqx.gz; "log" for standard input.
std::string stemOf(const std::string& path);

} // namespace tqx::tool
