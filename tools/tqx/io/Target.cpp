#include "io/Target.h"

#include "io/Input.h"
#include "io/ToolError.h"

#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace tqx::tool
{

namespace
{

/// False when there is no such regular file.
bool getStatus(const std::string& path, int standard, struct stat& status)
{
    const int result = path == "-" ? ::fstat(standard, &status) : ::stat(path.c_str(), &status);
    return result == 0 && S_ISREG(status.st_mode);
}

} // namespace

void refuseSameFile(const std::vector<std::string>& inputs, const std::string& target)
{
    struct stat output = {};
    if (!getStatus(target, STDOUT_FILENO, output))
        return;
    for (const std::string& path : inputs) {
        struct stat input = {};
        if (getStatus(path, STDIN_FILENO, input) && input.st_dev == output.st_dev &&
            input.st_ino == output.st_ino) {
            throw ToolError((target == "-" ? "standard output" : target) +
                            " is an input and cannot also be the output");
        }
    }
}

void refuseUnreadable(const std::vector<std::string>& inputs)
{
    for (const std::string& path : inputs) {
        if (path == "-")
            continue;
        struct stat status = {};
        if (::stat(path.c_str(), &status) != 0 || ::access(path.c_str(), R_OK) != 0)
            throw SourceError(path + ": " + std::strerror(errno));
        if (S_ISDIR(status.st_mode))
            throw SourceError(path + ": " + std::strerror(EISDIR));
        if (S_ISREG(status.st_mode))
            const Input opened(path);
    }
}

void refuseTerminal(const std::string& target)
{
    if (target == "-" && ::isatty(STDOUT_FILENO) != 0)
        throw ToolError("the output is binary; name a file with -o, or use a pipe");
}

} // namespace tqx::tool
