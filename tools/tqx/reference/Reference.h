#pragma once

#include "tqx/log/text/Buffer.h"

#include <CLI/App.hpp>

#include <string>
#include <vector>

namespace tqx::tool
{

/// What is written about the program from the same declarations that its arguments are parsed by.

/// Appends the manual page, in the language of man.
void appendManPage(Buffer& out, const CLI::App& program, const std::string& version);

/// Appends a script that makes bash complete commands, options and their values.
void appendCompletion(Buffer& out, const CLI::App& program);

/// The commands of a program, or of an option list those that users see.
std::vector<const CLI::App*> commandsOf(const CLI::App& program);
std::vector<const CLI::Option*> optionsOf(const CLI::App& command);

} // namespace tqx::tool
