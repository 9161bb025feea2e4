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
/// made: any number of threads may use the same one.
class TQX_LOG_API FieldFilter
{
public:
    /// A row of a layout, and the filter for its content.
    struct Shown {
        int row;
        const FieldFilter* inside;
    };

    /// Shows everything.
    FieldFilter() = default;

    /// Shows the fields named by `paths`, in this order: "Latitude", "Type1" with everything in it,
    /// "Type1.CN0"; "CN0" alone means that of sub-blocks in types that have no such field
    /// themselves. After the name of a block, as in "MeasEpoch2.Type1.CN0", only that block's field
    /// is meant. Case is ignored, and an underscore may stand for a blank. Throws DataError for a
    /// path that no type of the schema has.
    explicit FieldFilter(const std::vector<std::string>& paths, const Schema& schema = {});

    /// The types that it is for; writers use the same ones.
    const Schema& getSchema() const { return m_schema; }

    /// Whether every field is shown.
    bool isEverything() const { return !m_isChoice; }

    /// The fields to show of a type, in order: those of the main type, or, for the filter in a
    /// Shown, of the sub-block there. The filters live as long as this one.
    std::vector<Shown> shownIn(const Kor::MessageApi::TQX_TypeLayout& type) const;

    /// Whether any field of the type is shown.
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
