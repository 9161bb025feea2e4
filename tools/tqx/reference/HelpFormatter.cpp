#include "reference/HelpFormatter.h"

#include <algorithm>
#include <sstream>

namespace tqx::tool
{

namespace
{

constexpr size_t narrowest = 40;
constexpr size_t widestHead = 28;

} // namespace

std::string filled(const std::string& text, size_t start, size_t indentation, size_t width)
{
    std::istringstream words(text);
    words.exceptions(std::ios::badbit); // else lack of memory would look like the end
    std::string lines;
    size_t column = start;
    bool isFirst = true;
    for (std::string word; words >> word; isFirst = false) {
        if (!isFirst && column + 1 + word.size() > width) {
            lines += '\n' + std::string(indentation, ' ');
            column = indentation;
        } else if (!isFirst) {
            lines += ' ';
            ++column;
        }
        lines += word;
        column += word.size();
    }
    return lines + '\n';
}

HelpFormatter::HelpFormatter(size_t columns) : m_width(std::max(columns, narrowest))
{
    column_width(std::min(widestHead, m_width / 3));
}

std::string HelpFormatter::entry(const std::string& head, const std::string& text) const
{
    const size_t column = get_column_width();
    std::string line = "  " + filled(head, 2, 4, m_width);
    line.pop_back();
    const size_t used = line.size() - (line.rfind('\n') + 1);
    if (text.empty())
        return line + '\n';
    if (used + 2 > column) {
        line += '\n' + std::string(column, ' ');
    } else {
        line += std::string(column - used, ' ');
    }
    return line + filled(text, column, column, m_width);
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const
{
    return entry(make_option_name(option, isPositional) + make_option_opts(option),
                 make_option_desc(option));
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const
{
    return entry(command->get_name(), command->get_description());
}

std::string HelpFormatter::make_description(const CLI::App* app) const
{
    return filled(app->get_description(), 0, 0, m_width);
}

std::string HelpFormatter::make_footer(const CLI::App* app) const
{
    std::istringstream lines(app->get_footer());
    lines.exceptions(std::ios::badbit);
    std::string footer;
    std::string paragraph;
    const auto endParagraph = [&] {
        if (!paragraph.empty())
            footer += filled(paragraph, 0, 0, m_width);
        paragraph.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.front() != ' ') {
            paragraph += line + ' ';
            continue;
        }
        endParagraph();
        footer += line + '\n';
    }
    endParagraph();
    return footer;
}

} // namespace tqx::tool
