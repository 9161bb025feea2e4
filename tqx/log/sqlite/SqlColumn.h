#pragma once

#include "tqx_log_export.h"

#include <set>
#include <string>
#include <string_view>

namespace tqx
{

/// A column of a table.
struct SqlColumn {
    std::string name;
    std::string type;  ///< as it is declared: "INTEGER", "REAL", "TEXT" or nothing
    std::string field; ///< path of the field: "Type1.SVID"; empty if not a field
    std::string unit;
    double scale = 0; ///< factor of stored values, applied or not; 0 for none
    std::string description;
};

/// Makes names that SQL considers different.
class SqlNames
{
public:
    /// `wanted` with underscores for whatever needs quotes in SQL, and with a number appended where
    /// the name is taken, case ignored.
    std::string take(std::string_view wanted);

private:
    std::set<std::string> m_taken; ///< in lower case
};

/// A name as SQL text: "Group".
TQX_LOG_API std::string quotedSql(std::string_view name);

} // namespace tqx
