#pragma once

#include "tqx/log/table/ArrowExport.h"
#include "tqx/log/table/ColumnBuffer.h"
#include "tqx/log/table/ColumnPlan.h"
#include "tqx/log/table/Validity.h"
#include "tqx/log/time/GnssTime.h"

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tqx::python
{

/// The columns of a table of a product, filled row by row: what is missing is null.
class ProductTable
{
public:
    enum class Kind : uint8_t { Time, Real, Small, Flag, Text };

    /// A column; `unit` may be empty. Returns its place.
    size_t add(Kind kind, const std::string& name, const std::string& unit = {});

    /// Nothing is appended to a column but by these, one of them for each row.
    void time(size_t column, GnssMillis time);
    void utc(size_t column, GnssMillis time);
    void real(size_t column, double value)
    {
        Column& filled = m_columns[column];
        filled.values.push(value);
        mark(filled, !std::isnan(value));
    }
    void small(size_t column, int value, bool isKnown = true);
    void flag(size_t column, bool value);
    void text(size_t column, std::string_view value); ///< empty: null

    void endRow() { ++m_rows; }
    size_t getRows() const { return m_rows; }

    void exportSchema(const std::string& description, ArrowSchema& out) const;

    /// Hands over the rows and begins anew.
    void finish(ArrowArray& out);

private:
    struct Column {
        ColumnPlan plan;
        Kind kind;
        Validity validity;
        ColumnBuffer values; ///< of texts where they end
        ColumnBuffer characters;
        uint8_t bits = 0; ///< of flags, of the last byte
    };

    static void mark(Column& column, bool isKnown)
    {
        if (isKnown) {
            column.validity.appendValid(1);
        } else {
            column.validity.appendNulls(1);
        }
    }

    std::vector<Column> m_columns;
    size_t m_rows = 0;
};

} // namespace tqx::python
