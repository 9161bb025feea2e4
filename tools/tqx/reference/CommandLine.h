#pragma once

#include <CLI/App.hpp>

#include <string>

namespace tqx::tool
{

/// What is wrong with a command line, in one line, with what may have been meant.
std::string describe(const CLI::App& program, const CLI::ParseError& error);

} // namespace tqx::tool
