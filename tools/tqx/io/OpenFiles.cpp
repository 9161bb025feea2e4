#include "io/OpenFiles.h"

#include "io/ToolError.h"

#include <fmt/format.h>

#include <sys/resource.h>

namespace tqx::tool
{

void allowOpenFiles(size_t count)
{
    constexpr size_t others = 16;
    rlimit limit = {};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= count + others)
        return;
    if (limit.rlim_max >= count + others) {
        limit.rlim_cur = count + others;
        if (::setrlimit(RLIMIT_NOFILE, &limit) == 0)
            return;
    }
    throw ToolError(fmt::format(
        "{} inputs at the same time exceed the system's limit of {} open files (see ulimit -n)",
        count, limit.rlim_max));
}

} // namespace tqx::tool
