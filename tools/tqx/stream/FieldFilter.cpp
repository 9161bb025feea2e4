#include "FieldFilter.h"

#include "ToolError.h"
#include "TypeNames.h"

#include <set>
#include <string_view>

namespace tool
{

using namespace Kor::MessageApi;

namespace
{

/// Whether a path of field names leads from the type to a field.
bool leadsToField(const TQX_TypeLayout& type, std::string_view path)
{
    const size_t point = path.find('.');
    const std::string_view name = path.substr(0, point);
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (name != field.name)
            continue;
        if (point == std::string_view::npos)
            return true;
        return field.recordType != 0 &&
               leadsToField(*TQX_layout(field.recordType), path.substr(point + 1));
    }
    return false;
}

void check(const std::string& path)
{
    bool found = false;
    forEachType([&](const TQX_TypeLayout& type) {
        found = found || (type.blockNumber != 0 && leadsToField(type, path));
    });
    if (found)
        return;
    std::set<std::string_view> names;
    forEachType([&](const TQX_TypeLayout& type) {
        for (int i = 0; type.blockNumber != 0 && i < type.fieldCount; ++i)
            names.insert(type.fields[i].name);
    });
    throw ToolError(unknownName("field", path, {names.begin(), names.end()}));
}

} // namespace

FieldFilter::FieldFilter(const std::vector<std::string>& paths)
{
    for (const std::string& path : paths) {
        check(path);
        add(path);
    }
}

void FieldFilter::add(const std::string& path)
{
    const size_t point = path.find('.');
    const auto [child, isNew] = children.try_emplace(path.substr(0, point));
    if (point == std::string::npos)
        child->second.children.clear();
    else if (isNew || !child->second.isEverything())
        child->second.add(path.substr(point + 1));
}

const FieldFilter* FieldFilter::find(const std::string& name) const
{
    if (isEverything())
        return this;
    const auto found = children.find(name);
    return found == children.end() ? nullptr : &found->second;
}

bool FieldFilter::matches(const TQX_TypeLayout& type) const
{
    if (isEverything())
        return true;
    for (int i = 0; i < type.fieldCount; ++i)
        if (find(type.fields[i].name))
            return true;
    return false;
}

} // namespace tool
