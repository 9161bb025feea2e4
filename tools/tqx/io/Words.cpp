#include "io/Words.h"

#include "tqx/log/text/PrintableText.h"

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

/// The text without control characters, cut to what certainly fits on a line of the terminal: no
/// character takes more columns than bytes.
std::string fitted(std::string_view text)
{
    constexpr size_t usualWidth = 80;
    winsize window = {};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col != 0;
    const std::string line = printable(text);
    size_t length = std::min(line.size(), (known ? window.ws_col : usualWidth) - 1);
    const auto isWithin = [&](size_t at) { return (line[at] & 0xc0) == 0x80; };
    while (length != 0 && length < line.size() && isWithin(length))
        --length;
    return line.substr(0, length);
}

} // namespace

void say(std::string_view text)
{
    std::string lines = "tqx: ";
    size_t start = 0;
    for (size_t end = 0; (end = text.find("\n  ", end)) != std::string_view::npos;) {
        lines += printable(text.substr(start, end - start)) + '\n';
        start = ++end;
    }
    print(lines + printable(text.substr(start)) + '\n');
}

void sayOutOfMemory()
{
    const std::lock_guard<std::mutex> lock(mutex);
    wipe();
    std::fputs("tqx: out of memory\n", stderr);
    std::fflush(stderr);
}

void sayAt(std::string_view file, uint64_t offset, std::string_view text)
{
    print(fmt::format("tqx: {}: {}: {}\n", printable(file), offset, printable(text)));
}

void sayLine(std::string_view file, uint64_t line, std::string_view text)
{
    print(fmt::format("{}:{}: {}\n", printable(file), line, printable(text)));
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
