#include "Progress.h"

#include "Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace tool
{

Progress::Progress(std::string inputName, uint64_t inputSize)
    : name(std::move(inputName)), size(inputSize),
      enabled(::isatty(STDERR_FILENO) != 0 && ::isatty(STDOUT_FILENO) == 0), start(Clock::now()),
      next(start + std::chrono::seconds(1))
{
}

Progress::~Progress()
{
    if (enabled)
        words::showProgress("");
}

void Progress::update(uint64_t bytes)
{
    if (!enabled)
        return;
    const Clock::time_point now = Clock::now();
    if (now < next)
        return;
    next = now + std::chrono::milliseconds(200);
    const double seconds = std::chrono::duration<double>(now - start).count();
    const double megabytes = static_cast<double>(bytes) * 1e-6;
    std::string text =
        fmt::format("{}: {:.1f} MB, {:.1f} MB/s", name, megabytes, megabytes / seconds);
    if (size != 0)
        text += fmt::format(", {}%", std::min(bytes, size) * 100 / size);
    words::showProgress(text);
}

} // namespace tool
