#include "io/Output.h"

#include "io/ToolError.h"
#include "io/Words.h"

#include <cerrno>
#include <cstring>

namespace tqx::tool
{

Output::Output() : m_name("standard output"), m_file(stdout) {}

Output::Output(const std::string& path)
    : m_name(path == "-" ? "standard output" : path),
      m_file(path == "-" ? stdout : std::fopen(path.c_str(), "wb"))
{
    if (!m_file)
        throw ToolError(m_name + ": " + std::strerror(errno));
}

Output::~Output()
{
    if (m_file != stdout)
        std::fclose(m_file);
}

void Output::flush()
{
    const std::string_view text = m_buffer.view();
    m_buffer.clear();
    write(text);
}

void Output::write(std::string_view text)
{
    if (m_file == stdout && !text.empty())
        words::makeWay();
    if (std::fwrite(text.data(), 1, text.size(), m_file) == text.size() && std::fflush(m_file) == 0)
        return;
    if (errno == EPIPE || errno == EINTR)
        throw ClosedPipe();
    throw ToolError(m_name + ": " + std::strerror(errno));
}

} // namespace tqx::tool
