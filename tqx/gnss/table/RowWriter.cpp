#include "tqx/gnss/table/RowWriter.h"

#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/FixedNumber.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

#include <cmath>

namespace tqx
{

RowWriter::RowWriter(RowFormat format, const std::vector<Column>& columns)
    : m_format(format), m_columns(columns)
{
    for (const Column& column : m_columns) {
        const char* const comma = m_keys.empty() ? "" : ",";
        m_keys.push_back(m_format == RowFormat::Csv ? comma : comma + json::key(column.name));
    }
}

std::vector<RowWriter::Column> RowWriter::withTime(const std::vector<Column>& columns)
{
    std::vector<Column> all = {{"WNc", "week"}, {"TOW", "second"}, {"UTC"}};
    all.insert(all.end(), columns.begin(), columns.end());
    return all;
}

void RowWriter::writeHead(Buffer& out) const
{
    if (m_format != RowFormat::Csv)
        return;
    for (const Column& column : m_columns) {
        if (&column != m_columns.data())
            out.append(',');
        const std::string unit = column.unit;
        out.append(csv::cell(unit.empty() ? column.name : column.name + (" [" + unit + "]")));
    }
    out.append('\n');
}

void RowWriter::begin(Buffer& out)
{
    m_column = 0;
    if (m_format == RowFormat::JsonLines)
        out.append('{');
}

void RowWriter::end(Buffer& out)
{
    if (m_format == RowFormat::JsonLines)
        out.append('}');
    out.append('\n');
}

void RowWriter::next(Buffer& out)
{
    out.append(m_keys[m_column++]);
}

void RowWriter::missing(Buffer& out)
{
    next(out);
    if (m_format == RowFormat::JsonLines)
        out.append("null");
}

void RowWriter::text(Buffer& out, std::string_view value)
{
    if (value.empty())
        return missing(out);
    next(out);
    if (m_format == RowFormat::Csv) {
        out.append(csv::cell(value));
    } else {
        json::appendString(out, value);
    }
}

void RowWriter::whole(Buffer& out, int64_t value)
{
    next(out);
    number::appendSigned(out, value);
}

void RowWriter::flag(Buffer& out, bool value)
{
    next(out);
    out.append(m_format == RowFormat::Csv ? (value ? "1" : "0") : (value ? "true" : "false"));
}

void RowWriter::fixed(Buffer& out, double value, int decimals)
{
    if (std::isnan(value))
        return missing(out);
    next(out);
    appendFixed(out, value, decimals);
}

void RowWriter::number(Buffer& out, double value)
{
    if (!std::isfinite(value))
        return missing(out);
    next(out);
    number::appendDouble(out, value);
}

void RowWriter::time(Buffer& out, GnssMillis time)
{
    if (time == m_time && !m_timeText.empty()) {
        m_column = timeColumns;
        return out.append(m_timeText);
    }
    Buffer cells;
    whole(cells, static_cast<int64_t>(time / millisPerWeek));
    const uint64_t millis = time % millisPerWeek;
    fixed(cells, static_cast<double>(millis) * 1e-3, millis % 1000 == 0 ? 0 : 3);
    text(cells, utcText(time));
    m_time = time;
    m_timeText = cells.view();
    out.append(m_timeText);
}

} // namespace tqx
