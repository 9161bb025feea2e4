#include "tqx/gnss/table/TextTable.h"

#include "tqx/log/text/CsvText.h"
#include "tqx/log/text/FixedNumber.h"
#include "tqx/log/text/JsonText.h"
#include "tqx/log/text/NumberText.h"
#include "tqx/log/time/LeapSeconds.h"

#include <cmath>
#include <string>

namespace tqx
{

namespace
{

class TextRows final : public TableRows
{
public:
    TextRows(RowFormat format, Buffer& out, const std::vector<TableColumn>& columns)
        : m_format(format), m_out(out)
    {
        for (const TableColumn& column : columns) {
            const char* const comma = m_keys.empty() ? "" : ",";
            m_keys.push_back(m_format == RowFormat::Csv ? comma : comma + json::key(column.name));
        }
    }

    void writeHead(const std::vector<TableColumn>& columns)
    {
        for (const TableColumn& column : columns) {
            if (&column != columns.data())
                m_out.append(',');
            const std::string unit = column.unit;
            m_out.append(csv::cell(unit.empty() ? column.name : column.name + (" [" + unit + "]")));
        }
        m_out.append('\n');
    }

    void begin() override
    {
        m_column = 0;
        if (m_format == RowFormat::JsonLines)
            m_out.append('{');
    }

    void end() override
    {
        if (m_format == RowFormat::JsonLines)
            m_out.append('}');
        m_out.append('\n');
    }

    void text(std::string_view value) override { appendText(m_out, value); }

    void whole(int64_t value) override { appendWhole(m_out, value); }

    void flag(bool value) override
    {
        next(m_out);
        m_out.append(m_format == RowFormat::Csv ? (value ? "1" : "0") : (value ? "true" : "false"));
    }

    void missing() override { appendMissing(m_out); }

    void fixed(double value, int decimals) override { append(m_out, value, decimals); }

    void number(double value) override
    {
        if (!std::isfinite(value))
            return missing();
        next(m_out);
        number::appendDouble(m_out, value);
    }

    /// Rows of the same time are written from memory.
    void time(GnssMillis time) override
    {
        if (time != m_time || m_timeText.empty()) {
            Buffer cells;
            appendWhole(cells, static_cast<int64_t>(time / millisPerWeek));
            const uint64_t millis = time % millisPerWeek;
            append(cells, static_cast<double>(millis) * 1e-3, millis % 1000 == 0 ? 0 : 3);
            appendText(cells, utcText(time));
            m_time = time;
            m_timeText = cells.view();
        }
        m_column = timeColumns;
        m_out.append(m_timeText);
    }

private:
    void next(Buffer& out) { out.append(m_keys[m_column++]); }

    void appendMissing(Buffer& out)
    {
        next(out);
        if (m_format == RowFormat::JsonLines)
            out.append("null");
    }

    void appendText(Buffer& out, std::string_view value)
    {
        if (value.empty())
            return appendMissing(out);
        next(out);
        if (m_format == RowFormat::Csv) {
            out.append(csv::cell(value));
        } else {
            json::appendString(out, value);
        }
    }

    void appendWhole(Buffer& out, int64_t value)
    {
        next(out);
        number::appendSigned(out, value);
    }

    void append(Buffer& out, double value, int decimals)
    {
        if (std::isnan(value))
            return appendMissing(out);
        next(out);
        appendFixed(out, value, decimals);
    }

    RowFormat m_format;
    Buffer& m_out;
    std::vector<std::string> m_keys; ///< the text before the value of each column
    size_t m_column = 0;
    GnssMillis m_time = 0;
    std::string m_timeText; ///< cells of m_time
};

} // namespace

std::unique_ptr<TableRows> TextTable::open(const char*, const std::vector<TableColumn>& columns)
{
    auto rows = std::make_unique<TextRows>(m_format, m_out, columns);
    if (m_format == RowFormat::Csv)
        rows->writeHead(columns);
    return rows;
}

} // namespace tqx
