#pragma once

#include "TQX_Layout.h"

#include <map>
#include <string>
#include <vector>

namespace tqx
{

/// Which fields a command shows: a tree of names, fields of sub-blocks below the field that holds
/// the sub-blocks. A filter without names shows everything.
class FieldFilter
{
public:
    /// Everything.
    FieldFilter() = default;

    /// The fields named by `paths`: "Latitude", "Type1" with all that is in it, "Type1.CN0"; "CN0"
    /// alone is that of sub-blocks in types that have none themselves. An underscore may stand for
    /// a blank. Throws DataError for a path that no type has.
    explicit FieldFilter(const std::vector<std::string>& paths);

    /// Whether every field is shown.
    bool isEverything() const { return children.empty(); }

    /// The filter for what is inside the field `name`, or null when the field is not shown. Of a
    /// filter that shows everything it is that filter itself.
    const FieldFilter* find(const std::string& name) const;

    /// Whether at least one field of the type is shown.
    bool matches(const Kor::MessageApi::TQX_TypeLayout& type) const;

private:
    void add(const std::string& path);

    std::map<std::string, FieldFilter> children;
};

} // namespace tqx
