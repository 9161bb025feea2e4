#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx_gnss_export.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tqx
{

/// How the rows of a table are written.
enum class RowFormat : uint8_t {
    Csv,      ///< a line of names with units, then a line for each row; nothing for what is missing
    JsonLines ///< an object for each row, with null for what is missing
};

/// Rows of a table with a fixed list of columns. Cells are appended in the order of the columns.
class TQX_GNSS_API RowWriter
{
public:
    struct Column {
        const char* name;
        const char* unit = ""; ///< of the description of the format
    };

    RowWriter(RowFormat format, const std::vector<Column>& columns);

    /// What comes before the rows.
    void writeHead(Buffer& out) const;

    void begin(Buffer& out);
    void end(Buffer& out);

    void text(Buffer& out, std::string_view value); ///< "" is missing
    void whole(Buffer& out, int64_t value);
    void flag(Buffer& out, bool value);
    void missing(Buffer& out);

    /// A number with so many decimals; NaN is missing.
    void fixed(Buffer& out, double value, int decimals);

    /// A number in the shortest form that reads back to it; NaN is missing.
    void number(Buffer& out, double value);

    /// Columns that every table begins with.
    static constexpr size_t timeColumns = 3;
    static std::vector<Column> withTime(const std::vector<Column>& columns);

    /// The cells of those. What follows at the same time is written from memory.
    void time(Buffer& out, GnssMillis time);

private:
    void next(Buffer& out);

    RowFormat m_format;
    std::vector<Column> m_columns;
    std::vector<std::string> m_keys; ///< what comes before the value of each column
    size_t m_column = 0;
    GnssMillis m_time = 0;
    std::string m_timeText; ///< cells of m_time
};

} // namespace tqx
