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
    std::string field; ///< path of the field: "Type1.SVID"; empty for what is no field
    std::string unit;
    double scale = 0; ///< by which stored values were multiplied, or would have to be; 0 for none
    std::string description;
};

/// Gives out names that SQL takes for different ones.
class SqlNames
{
public:
    /// `wanted` with underscores for what needs quotes in SQL, and a number after it where that is
    /// the name of something else, case ignored.
    std::string take(std::string_view wanted);

private:
    std::set<std::string> m_taken; ///< in lower case
};

/// A name as SQL text: "Group".
TQX_LOG_API std::string quotedSql(std::string_view name);

} // namespace tqx
