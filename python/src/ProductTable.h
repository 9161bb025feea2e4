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

/// The columns of a table of a product, filled row by row; missing values are null.
class ProductTable
{
public:
    enum class Kind : uint8_t { Time, Real, Small, Flag, Text, Name };

    /// A column; `unit` may be empty. Returns its place.
    size_t add(Kind kind, const std::string& name, const std::string& unit = {});

    /// Leaves reals that are missing NaN alone, for readers that have no other missing ones: that
    /// is faster. Before the first row.
    void setNanIsMissing() { m_isNanMissing = true; }

    /// A column of texts from a fixed list, at most 32767.
    size_t addNames(const std::string& name, const std::vector<std::string>& texts);

    /// Columns are appended to only by these functions, one call per row.
    void time(size_t column, GnssMillis time);
    void utc(size_t column, GnssMillis time);
    void real(size_t column, double value)
    {
        Column& filled = m_columns[column];
        filled.values.push(value);
        mark(filled, m_isNanMissing || !std::isnan(value));
    }
    void small(size_t column, int value, bool isKnown = true);
    void text(size_t column, std::string_view value); ///< empty: null

    /// The same for several rows at once, which is faster: get(i) is the value of the i-th of them.
    template<typename Get>
    void reals(size_t column, size_t count, const Get& get);
    template<typename Get>
    void smalls(size_t column, size_t count, const Get& get);
    template<typename Get>
    void flags(size_t column, size_t count, const Get& get);
    void times(size_t column, size_t count, GnssMillis time);

    void endRows(size_t count) { m_rows += count; }
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
    std::vector<uint8_t> m_known; ///< of the current rows
    size_t m_rows = 0;
    bool m_isNanMissing = false;
};

template<typename Get>
void ProductTable::reals(size_t column, size_t count, const Get& get)
{
    Column& filled = m_columns[column];
    uint8_t* out = filled.values.extend(count * sizeof(double));
    if (m_isNanMissing) {
        for (size_t i = 0; i < count; ++i) {
            const double value = get(i);
            std::memcpy(out + i * sizeof value, &value, sizeof value);
        }
        filled.validity.appendValid(count);
        return;
    }
    m_known.resize(count);
    size_t known = 0;
    for (size_t i = 0; i < count; ++i) {
        const double value = get(i);
        std::memcpy(out + i * sizeof value, &value, sizeof value);
        m_known[i] = std::isnan(value) ? 0 : 1;
        known += m_known[i];
    }
    if (known == count) {
        filled.validity.appendValid(count);
    } else if (known == 0) {
        filled.validity.appendNulls(count);
    } else {
        filled.validity.append(m_known.data(), count);
    }
}

template<typename Get>
void ProductTable::smalls(size_t column, size_t count, const Get& get)
{
    Column& filled = m_columns[column];
    uint8_t* out = filled.values.extend(count * sizeof(int16_t));
    for (size_t i = 0; i < count; ++i) {
        const int16_t value = get(i);
        std::memcpy(out + i * sizeof value, &value, sizeof value);
    }
    filled.validity.appendValid(count);
}

template<typename Get>
void ProductTable::flags(size_t column, size_t count, const Get& get)
{
    Column& filled = m_columns[column];
    const size_t before = filled.validity.size();
    const size_t bytes = (before + count + 7) / 8;
    const size_t more = bytes - filled.values.size();
    if (more != 0)
        std::memset(filled.values.extend(more), 0, more);
    uint8_t* out = filled.values.data();
    for (size_t i = 0; i < count; ++i) {
        const size_t bit = before + i;
        out[bit / 8] |= static_cast<uint8_t>((get(i) ? 1U : 0U) << (bit % 8));
    }
    filled.validity.appendValid(count);
}

} // namespace tqx::python
