#pragma once

#include "TQX_Layout.h"
#include "tqx/log/schema/Schema.h"
#include "tqx_log_export.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// Which fields a command shows of each type, and in which order: a tree, with the fields of a
/// sub-block below the field that holds it. A filter without names shows everything. Immutable once
/// made: any number of threads may ask the same one.
class TQX_LOG_API FieldFilter
{
public:
    /// A row of a layout, and the filter for what is inside it.
    struct Shown {
        int row;
        const FieldFilter* inside;
    };

    /// Everything.
    FieldFilter() = default;

    /// The fields named by `paths`, in this order: "Latitude", "Type1" with all that is in it,
    /// "Type1.CN0"; "CN0" alone is that of sub-blocks in types that have none themselves. With the
    /// name of a block in front, "MeasEpoch2.Type1.CN0", it is a field of that block alone. Case is
    /// ignored, and an underscore may stand for a blank. Throws DataError for a path that no type
    /// has. Types are those of the schema.
    explicit FieldFilter(const std::vector<std::string>& paths, const Schema& schema = {});

    /// The types that it is for, from which writers take it.
    const Schema& getSchema() const { return m_schema; }

    /// Whether every field is shown.
    bool isEverything() const { return !m_isChoice; }

    /// What is shown of a type in the order to show it: of the main type itself, or, for a filter
    /// from inside a Shown, of the sub-block there. The filters live as long as this one.
    std::vector<Shown> shownIn(const Kor::MessageApi::TQX_TypeLayout& type) const;

    /// Whether at least one field of the type is shown.
    bool matches(const Kor::MessageApi::TQX_TypeLayout& type) const;

private:
    bool choose(const Kor::MessageApi::TQX_TypeLayout& type, std::string_view wanted);
    void add(const Kor::MessageApi::TQX_TypeLayout& type, std::string_view path);

    Schema m_schema; ///< at the top
    bool m_isChoice = false;
    std::map<uint32_t, FieldFilter> m_types; ///< at the top, by record type
    std::vector<int> m_rows;                 ///< below it, what is shown
    std::vector<FieldFilter> m_insides;      ///< of each row
};

} // namespace tqx
