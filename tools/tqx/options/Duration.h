#pragma once

#include <CLI/App.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace tqx::tool
{

/// Milliseconds of a duration with its unit: "30s", "1.5min", "1h", "1d". At least one millisecond,
/// at most 3,650 days. Throws DataError with the reason.
uint64_t durationMillis(std::string_view text);

/// Adds an option for it, with the value in milliseconds.
CLI::Option* addDuration(CLI::App& command, const std::string& name, uint64_t& millis,
                         const std::string& description);

} // namespace tqx::tool
