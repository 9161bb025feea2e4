#pragma once

#include "emit/Emitters.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace korcg::generator
{

/// Splits a selection into `count` contiguous runs with about the same number of fields each, one
/// for each translation unit. Runs may be empty.
inline std::vector<Selection> groups(const Selection& selection, std::size_t count)
{
    std::size_t total = 0;
    for (const RecordType* type : selection)
        total += type->fields.size();
    std::vector<Selection> result(count);
    std::size_t before = 0;
    for (const RecordType* type : selection) {
        const std::size_t group = total == 0 ? 0 : before * count / total;
        result[std::min(group, count - 1)].push_back(type);
        before += type->fields.size();
    }
    return result;
}

} // namespace korcg::generator
