#include "tqx/log/select/NamePattern.h"

#include "tqx/log/record/TypeNames.h"

namespace tqx
{

bool isPattern(std::string_view name)
{
    return name.find_first_of("*?") != std::string_view::npos;
}

namespace
{

/// Whether a byte continues a UTF-8 character.
bool isWithin(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80;
}

} // namespace

// A run that was taken too short is taken one longer; only the last run needs to be tried again.
bool matchesPattern(std::string_view name, std::string_view pattern)
{
    size_t n = 0;
    size_t p = 0;
    size_t run = std::string_view::npos;
    size_t runStart = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            run = p++;
            runStart = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == '?' || equalNames(name.substr(n, 1), pattern.substr(p, 1)))) {
            const bool isAny = pattern[p++] == '?';
            for (++n; isAny && n < name.size() && isWithin(name[n]);)
                ++n;
        } else if (run != std::string_view::npos) {
            p = run + 1;
            n = ++runStart;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

} // namespace tqx
