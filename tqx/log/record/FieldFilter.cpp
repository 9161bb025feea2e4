#include "tqx/log/record/FieldFilter.h"

#include "tqx/log/DataError.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Equal names; an underscore may stand for a blank.
bool isSpelled(std::string_view path, std::string_view wanted)
{
    return std::equal(path.begin(), path.end(), wanted.begin(), wanted.end(),
                      [](char x, char y) { return x == y || (x == ' ' && y == '_'); });
}

/// Whether the end of the path is what is wanted, from some sub-block on.
bool endsWith(std::string_view path, std::string_view wanted)
{
    return path.size() > wanted.size() && path[path.size() - wanted.size() - 1] == '.' &&
           isSpelled(path.substr(path.size() - wanted.size()), wanted);
}

/// What a name stands for in a type: the field of that name or, when there is none, all in its
/// sub-blocks at any depth.
std::vector<std::string> pathsIn(const TQX_TypeLayout& type, const std::string& wanted)
{
    std::vector<std::string> exact;
    std::vector<std::string> inner;
    forEachField(type, [&](const std::string& path) {
        if (isSpelled(path, wanted))
            exact.push_back(path);
        else if (endsWith(path, wanted))
            inner.push_back(path);
    });
    return exact.empty() ? inner : exact;
}

[[noreturn]] void refuse(const std::string& wanted)
{
    const size_t point = wanted.find('.');
    const TQX_TypeLayout* block = findType(wanted.substr(0, point));
    if (block && point != std::string::npos)
        throw DataError(fmt::format("--field {}: the block is chosen by --type {}, the field by "
                                    "--field {}",
                                    wanted, block->name, wanted.substr(point + 1)));
    std::set<std::string> paths;
    forEachType([&](const TQX_TypeLayout& type) {
        forEachField(type, [&](const std::string& path) { paths.insert(path); });
    });
    throw DataError(unknownName("field", wanted, {paths.begin(), paths.end()}));
}

} // namespace

FieldFilter::FieldFilter(const std::vector<std::string>& paths)
{
    for (const std::string& wanted : paths) {
        bool found = false;
        forEachType([&](const TQX_TypeLayout& type) {
            if (type.blockNumber == 0)
                return;
            for (const std::string& path : pathsIn(type, wanted)) {
                add(path);
                found = true;
            }
        });
        if (!found)
            refuse(wanted);
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

} // namespace tqx
