#include "tqx/log/record/FieldFilter.h"

#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"

#include <algorithm>
#include <set>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Whether the wanted names match the end of the path, from some sub-block on.
bool endsWith(std::string_view path, std::string_view wanted)
{
    return path.size() > wanted.size() && path[path.size() - wanted.size() - 1] == '.' &&
           equalFields(path.substr(path.size() - wanted.size()), wanted);
}

/// The fields that a name means in a type: the one of that name or, when there is none, all in its
/// sub-blocks at any depth.
std::vector<std::string> pathsIn(const TQX_TypeLayout& type, std::string_view wanted)
{
    std::vector<std::string> exact;
    std::vector<std::string> inner;
    forEachField(type, [&](const std::string& path) {
        if (equalFields(path, wanted)) {
            exact.push_back(path);
        } else if (endsWith(path, wanted)) {
            inner.push_back(path);
        }
    });
    return exact.empty() ? inner : exact;
}

int rowNamed(const TQX_TypeLayout& type, std::string_view name)
{
    int row = 0;
    while (type.fields[row].name != name)
        ++row;
    return row;
}

/// The main block whose name a path begins with, or null.
const TQX_TypeLayout* blockOf(std::string_view path, const Schema& schema)
{
    const size_t point = path.find('.');
    const TQX_TypeLayout* type =
        point == std::string_view::npos ? nullptr : schema.findType(path.substr(0, point));
    return type && type->blockNumber != 0 ? type : nullptr;
}

[[noreturn]] void refuse(const std::string& wanted, const Schema& schema)
{
    const TQX_TypeLayout* block = blockOf(wanted, schema);
    std::set<std::string> paths;
    schema.forEachType([&](const TQX_TypeLayout& type) {
        if (!block || block == &type)
            forEachField(type, [&](const std::string& path) { paths.insert(path); });
    });
    if (!block)
        throw DataError(unknownName("field", wanted, {paths.begin(), paths.end()}));
    throw DataError(unknownName(std::string("field of ") + block->name,
                                std::string_view(wanted).substr(wanted.find('.') + 1),
                                {paths.begin(), paths.end()}));
}

} // namespace

FieldFilter::FieldFilter(const std::vector<std::string>& paths, const Schema& schema)
    : m_schema(schema), m_isChoice(!paths.empty())
{
    std::set<std::string_view> seen;
    for (const std::string& wanted : paths) {
        if (!seen.insert(wanted).second)
            continue;
        bool found = false;
        schema.forEachType([&](const TQX_TypeLayout& type) {
            if (type.blockNumber != 0 && choose(type, wanted))
                found = true;
        });
        const TQX_TypeLayout* block = found ? nullptr : blockOf(wanted, schema);
        if (block)
            found = choose(*block, std::string_view(wanted).substr(wanted.find('.') + 1));
        if (!found)
            refuse(wanted, schema);
    }
}

bool FieldFilter::choose(const TQX_TypeLayout& type, std::string_view wanted)
{
    const std::vector<std::string> paths = pathsIn(type, wanted);
    for (const std::string& path : paths)
        m_types[type.recordType].add(type, path);
    return !paths.empty();
}

/// Adds an existing field of the type that this filter is for.
void FieldFilter::add(const TQX_TypeLayout& type, std::string_view path)
{
    m_isChoice = true;
    const size_t point = path.find('.');
    const int row = rowNamed(type, path.substr(0, point));
    const auto known = std::find(m_rows.begin(), m_rows.end(), row);
    const auto at = static_cast<size_t>(known - m_rows.begin());
    const bool isNew = known == m_rows.end();
    if (isNew) {
        m_rows.push_back(row);
        m_insides.emplace_back();
    }
    if (point == std::string_view::npos) {
        m_insides[at] = FieldFilter();
    } else if (isNew || !m_insides[at].isEverything()) {
        m_insides[at].add(*type.fields[row].sub, path.substr(point + 1));
    }
}

std::vector<FieldFilter::Shown> FieldFilter::shownIn(const TQX_TypeLayout& type) const
{
    std::vector<Shown> shown;
    if (isEverything()) {
        for (int row = 0; row < type.fieldCount; ++row)
            shown.push_back({row, this});
        return shown;
    }
    const auto own = m_types.find(type.recordType);
    const FieldFilter& filter = own == m_types.end() ? *this : own->second;
    for (size_t i = 0; i < filter.m_rows.size(); ++i)
        shown.push_back({filter.m_rows[i], &filter.m_insides[i]});
    return shown;
}

bool FieldFilter::matches(const TQX_TypeLayout& type) const
{
    return !shownIn(type).empty();
}

} // namespace tqx
