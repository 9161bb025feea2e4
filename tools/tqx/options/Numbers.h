#pragma once

#include <CLI/App.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tqx::tool
{

/// Numbers in arguments of the program: decimal, finite, with nothing around them.
namespace numbers
{

/// A whole number from `least` to `most`: only digits, leading zeros are ignored. Throws DataError
/// with the reason.
uint64_t whole(std::string_view text, uint64_t least, uint64_t most);

/// Any number from `least` to `most`: "-1.5", "1e-3". `unit` is for the message. Throws DataError
/// with the reason.
double real(std::string_view text, double least, double most, const char* unit = "");

/// Bytes: a whole number, with B, kB, MB, GB or TB (or k, M, G, T) for powers of 1000, KiB, MiB,
/// GiB or TiB for powers of 1024 after it. Case is ignored. Throws DataError with the reason.
uint64_t bytes(std::string_view text);

} // namespace numbers

/// Adds an option for numbers::whole().
CLI::Option* addWhole(CLI::App& command, const std::string& name, uint64_t& value, uint64_t least,
                      uint64_t most, const std::string& description);
CLI::Option* addWhole(CLI::App& command, const std::string& name, uint32_t& value, uint32_t least,
                      uint32_t most, const std::string& description);

/// Adds an option for numbers::real().
CLI::Option* addReal(CLI::App& command, const std::string& name, double& value, double least,
                     double most, const char* unit, const std::string& description);

/// Adds an option for numbers::bytes().
CLI::Option* addBytes(CLI::App& command, const std::string& name, uint64_t& value,
                      const std::string& description);

} // namespace tqx::tool
