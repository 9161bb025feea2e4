#include "io/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tqx::tool::words
{

namespace
{

using Clock = std::chrono::steady_clock;

std::mutex mutex; // of what follows and of the terminal's line
bool progressShown = false;
Clock::time_point progressAllowed;

void wipe()
{
    if (progressShown)
        std::fputs("\r\x1b[K", stderr);
    progressShown = false;
}

void print(const std::string& line)
{
    const std::lock_guard<std::mutex> lock(mutex);
    wipe();
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fflush(stderr);
}

/// The text without control characters and as much of it as surely fits on a line of the terminal:
/// no character takes more columns than bytes.
std::string fitted(std::string_view text)
{
    constexpr size_t usualWidth = 80;
    winsize window = {};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col != 0;
    size_t length = std::min(text.size(), (known ? window.ws_col : usualWidth) - 1);
    const auto isWithin = [&](size_t at) { return (text[at] & 0xc0) == 0x80; };
    while (length != 0 && length < text.size() && isWithin(length))
        --length;
    std::string line(text.substr(0, length));
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; };
    std::replace_if(line.begin(), line.end(), isControl, '?');
    return line;
}

} // namespace

void say(std::string_view text)
{
    print(fmt::format("tqx: {}\n", text));
}

void sayAt(std::string_view file, uint64_t offset, std::string_view text)
{
    print(fmt::format("tqx: {}: {}: {}\n", file, offset, text));
}

void sayLine(std::string_view file, uint64_t line, std::string_view text)
{
    print(fmt::format("{}:{}: {}\n", file, line, text));
}

bool canShowProgress()
{
    struct stat output = {};
    if (::fstat(STDOUT_FILENO, &output) == 0 &&
        (S_ISFIFO(output.st_mode) || S_ISSOCK(output.st_mode)))
        return false;
    const char* terminal = std::getenv("TERM");
    return ::isatty(STDERR_FILENO) != 0 && terminal && std::string_view(terminal) != "dumb";
}

void showProgress(std::string_view text)
{
    const std::lock_guard<std::mutex> lock(mutex);
    wipe();
    if (!text.empty() && Clock::now() >= progressAllowed) {
        fmt::print(stderr, "{}", fitted(text));
        progressShown = true;
    }
    std::fflush(stderr);
}

void makeWay()
{
    static const bool isTerminal = ::isatty(STDOUT_FILENO) != 0;
    if (!isTerminal)
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    wipe();
    std::fflush(stderr);
    progressAllowed = Clock::now() + std::chrono::seconds(1);
}

} // namespace tqx::tool::words
