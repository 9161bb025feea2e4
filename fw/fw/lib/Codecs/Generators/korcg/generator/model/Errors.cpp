#include "model/Errors.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <utility>

namespace korcg::generator
{

void Errors::add(const Location& where, std::string message)
{
    ++m_count;
    if (m_errors.size() < limit)
        m_errors.push_back({where, std::move(message)});
}

std::vector<std::string> Errors::report() const
{
    std::vector<Error> sorted = m_errors;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Error& a, const Error& b) {
        return std::tie(a.where.file, a.where.line) < std::tie(b.where.file, b.where.line);
    });
    std::vector<std::string> lines;
    lines.reserve(sorted.size() + 1);
    for (const Error& error : sorted) {
        std::string place = error.where.file;
        if (error.where.line != 0)
            place += fmt::format(":{}", error.where.line);
        lines.push_back(place.empty() ? error.message
                                      : fmt::format("{}: {}", place, error.message));
    }
    if (m_count > m_errors.size())
        lines.push_back(fmt::format("{} more errors", m_count - m_errors.size()));
    return lines;
}

} // namespace korcg::generator
