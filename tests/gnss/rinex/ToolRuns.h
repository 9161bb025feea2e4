#pragma once

#include "TemporaryFolder.h"

#include <string>
#include <vector>

/// Runs of the program in a folder of their own.
class ToolRuns
{
public:
    /// Runs `tqx` with arguments as a shell has them, in the folder. Returns the exit status; what
    /// it wrote is in "out" and "err".
    int run(const std::string& arguments) const;

    /// The same, and fails the test unless it is done. Returns standard output.
    std::string expectRun(const std::string& arguments) const;

    /// Content of a file in the folder.
    std::string read(const std::string& name) const;
    void write(const std::string& name, const std::string& content) const;

    /// Names of the files in a folder below, in order.
    std::vector<std::string> list(const std::string& folder) const;

    /// The one file in a folder below whose name ends like this; fails the test without one.
    std::string readOnly(const std::string& folder, const std::string& ending) const;

private:
    TemporaryFolder m_folder;
};
