#include "io/Output.h"

#include "io/ToolError.h"
#include "io/Words.h"

#include <cerrno>
#include <cstring>

namespace tqx::tool
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
    const std::string_view text = buffer.view();
    buffer.clear();
    write(text);
}

void Output::write(std::string_view text)
{
    if (file == stdout && !text.empty())
        words::makeWay();
    if (std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0)
        return;
    if (errno == EPIPE || errno == EINTR)
        throw ClosedPipe();
    throw ToolError(name + ": " + std::strerror(errno));
}

} // namespace tqx::tool
