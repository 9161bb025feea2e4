#include "io/Progress.h"

#include "io/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tqx::tool
{

namespace
{

/// Total size of all files, 0 when one has no size.
uint64_t sizeOf(const std::vector<std::string>& paths)
{
    uint64_t sum = 0;
    for (const std::string& path : paths) {
        std::error_code error;
        if (path == "-" || !std::filesystem::is_regular_file(path, error))
            return 0;
        const uintmax_t size = std::filesystem::file_size(path, error);
        sum += error ? 0 : size;
    }
    return sum;
}

} // namespace

Progress::Progress(const std::vector<std::string>& paths, bool isWanted)
    : m_enabled(isWanted && words::canShowProgress())
{
    if (m_enabled)
        m_size = sizeOf(paths);
}

Progress::Progress(std::string subject, uint64_t expected)
    : m_name(std::move(subject)), m_size(expected), m_enabled(words::canShowProgress())
{
}

Progress::~Progress()
{
    if (m_enabled)
        words::showProgress("");
}

void Progress::add(uint64_t bytes)
{
    m_done += bytes;
    if (!m_enabled)
        return;
    const Clock::time_point now = Clock::now();
    if (now < m_next)
        return;
    m_next = now + std::chrono::milliseconds(200);
    words::showProgress(describe(now));
}

/// The name comes last: a narrow terminal cuts it off.
std::string Progress::describe(Clock::time_point now) const
{
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    const double megabytes = static_cast<double>(m_done) * 1e-6;
    const std::string share =
        m_size == 0 ? "" : fmt::format("{}%, ", std::min(m_done, m_size) * 100 / m_size);
    return fmt::format("{}{:.1f} MB, {:.1f} MB/s: {}", share, megabytes, megabytes / seconds,
                       m_name);
}

} // namespace tqx::tool
