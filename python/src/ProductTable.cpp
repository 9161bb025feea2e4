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
    case ProductTable::Kind::Name:
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

size_t ProductTable::addNames(const std::string& name, const std::vector<std::string>& texts)
{
    const size_t column = add(Kind::Name, name);
    m_columns[column].plan.names = std::make_shared<NameDictionary>(texts);
    return column;
}

void ProductTable::time(size_t column, GnssMillis time)
{
    times(column, 1, time);
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

void ProductTable::times(size_t column, size_t count, GnssMillis time)
{
    Column& filled = m_columns[column];
    const int64_t value = (static_cast<int64_t>(time) + gnssEpoch) * nanosPerMilli;
    uint8_t* out = filled.values.extend(count * sizeof value);
    for (size_t i = 0; i < count; ++i)
        std::memcpy(out + i * sizeof value, &value, sizeof value);
    filled.validity.appendValid(count);
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
        // The next batch needs as much.
        const size_t size = column.values.size();
        parts.buffers.push_back(std::exchange(column.values, ColumnBuffer()));
        column.values.reserve(size);
        parts.names = column.plan.names;
        if (column.kind == Kind::Text)
            parts.buffers.push_back(std::exchange(column.characters, ColumnBuffer()));
        table.children.push_back(exportArray(std::move(parts)));
    }
    m_rows = 0;
    out = exportArray(std::move(table)).take();
}

} // namespace tqx::python
