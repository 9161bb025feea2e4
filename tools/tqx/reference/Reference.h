#pragma once

#include "tqx/log/text/Buffer.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace tqx::tool
{

/// Documentation of the program, from the same declarations by which its arguments are parsed.

/// Appends the manual page, in the language of man.
void appendManPage(Buffer& out, const CLI::App& program, const std::string& version);

/// Appends a script that makes bash complete commands, options and their values.
void appendCompletion(Buffer& out, const CLI::App& program);

/// The commands of a program, or the visible ones of an option list.
std::vector<const CLI::App*> commandsOf(const CLI::App& program);
std::vector<const CLI::Option*> optionsOf(const CLI::App& command);

} // namespace tqx::tool
