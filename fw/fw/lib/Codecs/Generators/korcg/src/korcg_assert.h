#pragma once

#include "korcg_export.h"

/// Path under which the runtime's own assertions are reported. A fixed text, so that reports read
/// the same wherever the library was built.
#define KORCG_RUNTIME_PATH "..\\fw\\fw\\lib\\Codecs\\Generators\\korcg\\src\\korcg"

/// Reports a broken precondition under the path `file`, the current line and the text `text`, and
/// ends the process, unless `condition` holds. The text is separate from the condition because
/// reports quote the expression as users of the runtime know it.
#define KORCG_ASSERT(file, condition, text)                                                        \
    ((condition) ? static_cast<void>(0) : korcg_assertFailed(file, __LINE__, text))

extern "C" {

/// Prints "<file>:<line>: Assertion failed '<expression>'" and a line end to standard output,
/// flushes it and ends the process with exit status 1. For programming errors only: no content of
/// a block may lead here.
[[noreturn]] KORCG_API void korcg_assertFailed(const char* file, long line, const char* expression);
}
