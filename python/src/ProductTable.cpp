#include "ProductTable.h"

#include "tqx/log/time/LeapSeconds.h"

#include <utility>

namespace tqx::python
{

namespace
{

constexpr int64_t gnssEpoch = 315964800000; ///< milliseconds from 1970 to 1980-01-06
constexpr int64_t nanosPerMilli = 1000000;

const char* formatOf(ProductTable::Kind kind)
{
    switch (kind) {
    case ProductTable::Kind::Time:
        return "tsn:";
    case ProductTable::Kind::Real:
        return "g";
    case ProductTable::Kind::Small:
        return "s";
    case ProductTable::Kind::Flag:
        return "b";
    default:
        return "u";
    }
}

} // namespace

size_t ProductTable::add(Kind kind, const std::string& name, const std::string& unit)
{
    Column column;
    column.kind = kind;
    column.plan.name = name;
    column.plan.format = formatOf(kind);
    if (!unit.empty())
        column.plan.metadata.emplace_back("unit", unit);
    if (kind == Kind::Time)
        column.plan.metadata.emplace_back("time_scale", name == "utc" ? "UTC" : "GPS");
    m_columns.push_back(std::move(column));
    return m_columns.size() - 1;
}

void ProductTable::time(size_t column, GnssMillis time)
{
    Column& filled = m_columns[column];
    filled.values.push((static_cast<int64_t>(time) + gnssEpoch) * nanosPerMilli);
    filled.validity.appendValid(1);
}

void ProductTable::utc(size_t column, GnssMillis millis)
{
    time(column, utcMillis(millis));
}

void ProductTable::small(size_t column, int value, bool isKnown)
{
    Column& filled = m_columns[column];
    filled.values.push(static_cast<int16_t>(value));
    mark(filled, isKnown);
}

void ProductTable::flag(size_t column, bool value)
{
    Column& filled = m_columns[column];
    const size_t bit = filled.validity.size() % 8;
    if (bit == 0)
        filled.values.push(uint8_t{0});
    if (value)
        filled.values.data()[filled.values.size() - 1] |= static_cast<uint8_t>(1U << bit);
    filled.validity.appendValid(1);
}

void ProductTable::text(size_t column, std::string_view value)
{
    Column& filled = m_columns[column];
    if (filled.values.size() == 0)
        filled.values.push(int32_t{0});
    std::memcpy(filled.characters.extend(value.size()), value.data(), value.size());
    filled.values.push(static_cast<int32_t>(filled.characters.size()));
    mark(filled, !value.empty());
}

void ProductTable::exportSchema(const std::string& description, ArrowSchema& out) const
{
    std::vector<const ColumnPlan*> plans;
    for (const Column& column : m_columns)
        plans.push_back(&column.plan);
    tqx::exportSchema(plans, {{"description", description}}, out);
}

void ProductTable::finish(ArrowArray& out)
{
    ArrayParts table;
    table.validity.appendValid(m_rows);
    for (Column& column : m_columns) {
        ArrayParts parts;
        parts.validity = std::exchange(column.validity, Validity());
        parts.buffers.push_back(std::exchange(column.values, ColumnBuffer()));
        if (column.kind == Kind::Text)
            parts.buffers.push_back(std::exchange(column.characters, ColumnBuffer()));
        table.children.push_back(exportArray(std::move(parts)));
    }
    m_rows = 0;
    out = exportArray(std::move(table)).take();
}

} // namespace tqx::python
