#include "io/Terminal.h"

#include "options/Numbers.h"
#include "tqx/log/DataError.h"

#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tqx::tool
{

size_t outputWidth()
{
    constexpr size_t usual = 80;
    constexpr size_t most = 10000;
    if (const char* wanted = std::getenv("COLUMNS")) {
        try {
            return numbers::whole(wanted, 1, most);
        } catch (const DataError&) {
        }
    }
    winsize window = {};
    const bool known = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col != 0;
    return known ? window.ws_col : usual;
}

} // namespace tqx::tool
