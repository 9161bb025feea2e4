#pragma once

#include "model/Model.h"

#include <cstddef>
#include <string>
#include <vector>

namespace korcg::generator
{

/// Collects what is wrong with a description, so that one run reports as much as possible.
class Errors
{
public:
    /// How many errors are kept; those beyond are only counted.
    static constexpr std::size_t limit = 50;

    void add(const Location& where, std::string message);

    bool empty() const { return m_count == 0; }
    std::size_t count() const { return m_count; }

    /// "file:line: message" each, ordered by file and line; a last line says how many are left
    /// out.
    std::vector<std::string> report() const;

private:
    struct Error {
        Location where;
        std::string message;
    };
    std::vector<Error> m_errors;
    std::size_t m_count = 0;
};

} // namespace korcg::generator
