#include "korcg_assert.h"

#include <cstdio>
#include <cstdlib>

void korcg_assertFailed(const char* file, long line, const char* expression)
{
    std::printf("%s:%ld: Assertion failed '%s'\n", file, line, expression);
    std::fflush(stdout);
    std::exit(1);
}
