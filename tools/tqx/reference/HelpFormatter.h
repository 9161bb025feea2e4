#pragma once

#include <CLI/App.hpp>

#include <cstddef>
#include <string>

namespace tqx::tool
{

/// Help texts whose lines are filled up to a width. Lines that are indented, such as examples, stay
/// as they are.
class HelpFormatter : public CLI::Formatter
{
public:
    /// `width` in columns; a very small one is widened.
    explicit HelpFormatter(size_t width);

    std::string make_option(const CLI::Option* option, bool isPositional) const override;
    std::string make_subcommand(const CLI::App* command) const override;
    std::string make_description(const CLI::App* app) const override;
    std::string make_footer(const CLI::App* app) const override;

private:
    std::string entry(const std::string& head, const std::string& text) const;

    size_t m_width;
};

/// The words of `text` in lines of up to `width` columns, each ended. `indentation` blanks are in
/// front of each but the first, which begins at column `start`.
std::string filled(const std::string& text, size_t start, size_t indentation, size_t width);

} // namespace tqx::tool
