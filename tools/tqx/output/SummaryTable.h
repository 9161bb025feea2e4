#pragma once

#include "options/InputStream.h"
#include "tqx/log/summary/StreamSummary.h"
#include "tqx/log/text/Buffer.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The content of several logs, side by side: one column each.
class SummaryTable
{
public:
    /// Adds the column of a log that has been read.
    void add(const InputStream& stream, const StreamSummary& summary);

    /// Appends the table, in pieces one below the other where the columns need more than `width`.
    void append(Buffer& out, size_t width) const;

private:
    struct Column {
        std::string name;
        std::vector<std::string> totals; ///< a cell for each row
        std::map<uint16_t, std::string> types;
        size_t width = 0;
    };

    void appendPiece(Buffer& out, size_t first, size_t last, size_t labelWidth) const;

    std::vector<Column> m_columns;
    std::map<uint16_t, std::string> m_types; ///< labels of all types that occur
};

} // namespace tqx::tool
