// Reads arbitrary bytes as a description: whatever they are, errors are reported, nothing crashes.

#include "read/Load.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

using namespace korcg::generator;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    std::string text(reinterpret_cast<const char*>(data), size);
    Errors errors;
    const Format format = loadWithHistory({{"fuzz.yaml", std::move(text)}}, errors, {});
    errors.report();
    // A description without errors has codes with names for all types.
    for (const RecordType& type : format.types) {
        if (errors.empty() &&
            (type.internal >= 0 ||
             format.codeNames.size() < static_cast<std::size_t>(-type.internal))) {
            __builtin_trap();
        }
    }
    return 0;
}
