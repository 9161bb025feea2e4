#include "io/Terminal.h"

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <system_error>
#include <unistd.h>

namespace tqx::tool
{

size_t outputWidth()
{
    constexpr size_t usual = 80;
    constexpr size_t most = 10000;
    if (const char* wanted = std::getenv("COLUMNS")) {
        const std::string_view text(wanted);
        size_t width = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), width);
        if (error == std::errc() && end == text.data() + text.size() && width >= 1 && width <= most)
            return width;
    }
    winsize window = {};
    const bool known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col != 0;
    return known ? window.ws_col : usual;
}

} // namespace tqx::tool
