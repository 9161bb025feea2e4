#include "Output.h"

#include "ToolError.h"
#include "Words.h"

#include <cerrno>
#include <cstring>

namespace tool
{

Output::Output() : name("standard output"), file(stdout) {}

Output::Output(const std::string& path)
    : name(path == "-" ? "standard output" : path),
      file(path == "-" ? stdout : std::fopen(path.c_str(), "wb"))
{
    if (!file)
        throw ToolError(name + ": " + std::strerror(errno));
}

Output::~Output()
{
    if (file != stdout)
        std::fclose(file);
}

void Output::flush()
{
    if (file == stdout && buffer.size() != 0)
        words::makeWay();
    const bool written = std::fwrite(buffer.data(), 1, buffer.size(), file) == buffer.size() &&
                         std::fflush(file) == 0;
    buffer.clear();
    if (written)
        return;
    if (errno == EPIPE || errno == EINTR)
        throw ClosedPipe();
    throw ToolError(name + ": " + std::strerror(errno));
}

} // namespace tool
