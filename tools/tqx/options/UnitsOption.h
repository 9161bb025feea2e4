#pragma once

#include <CLI/App.hpp>

#include <string>

namespace tqx::tool
{

/// The option --units of all commands that show values.
class UnitsOption
{
public:
    CLI::Option* add(CLI::App& command, const std::string& text)
    {
        return command.add_option("--units", m_units, text)
            ->transform(CLI::IsMember({"words", "symbols"}, CLI::ignore_case).description(""))
            ->type_name("words|symbols")
            ->capture_default_str();
    }

    /// Whether "m/s" is asked for instead of "meterpersecond".
    bool areSymbols() const { return m_units == "symbols"; }

private:
    std::string m_units = "words";
};

} // namespace tqx::tool
