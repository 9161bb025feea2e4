#include "tqx/gnss/table/DatabaseTable.h"

#include "tqx/log/sqlite/SqlColumn.h"
#include "tqx/log/sqlite/SqlDatabase.h"
#include "tqx/log/time/LeapSeconds.h"

#include <cmath>
#include <deque>

namespace tqx
{

namespace
{

class DatabaseRows final : public TableRows
{
public:
    explicit DatabaseRows(std::unique_ptr<SqlInsert> insert) : m_insert(std::move(insert)) {}

    void begin() override
    {
        m_column = 0;
        m_texts.clear();
    }

    void end() override { m_insert->run(); }

    void text(std::string_view value) override
    {
        ++m_column;
        if (!value.empty())
            m_insert->setText(m_column, m_texts.emplace_back(value));
    }

    void whole(int64_t value) override { m_insert->setInteger(++m_column, value); }

    void flag(bool value) override { m_insert->setInteger(++m_column, value ? 1 : 0); }

    void missing() override { ++m_column; }

    /// The number that its text parses to.
    void fixed(double value, int decimals) override
    {
        double factor = 1;
        for (int i = 0; i < decimals; ++i)
            factor *= 10;
        // As in text: rounded by the exact value of the number, ties away from zero.
        const double size = std::fabs(value);
        const double steps = size * factor;
        const double rest = std::fma(size, factor, -steps);
        const double whole = std::floor(steps);
        const double half = steps - whole - 0.5;
        const double rounded = half > 0 || (half == 0 && rest >= 0) ? whole + 1 : whole;
        m_insert->setReal(++m_column, std::copysign(rounded / factor, value));
    }

    void number(double value) override
    {
        ++m_column;
        if (std::isfinite(value))
            m_insert->setReal(m_column, value);
    }

    void time(GnssMillis time) override
    {
        if (time != m_time || m_utc.empty())
            m_utc = utcText(time);
        m_time = time;
        whole(static_cast<int64_t>(time / millisPerWeek));
        number(static_cast<double>(time % millisPerWeek) / 1000);
        m_insert->setText(++m_column, m_utc);
    }

private:
    std::unique_ptr<SqlInsert> m_insert;
    int m_column = 0;                ///< the last one that was set
    std::deque<std::string> m_texts; ///< of the row, until it has been inserted
    GnssMillis m_time = 0;
    std::string m_utc; ///< of m_time
};

} // namespace

class DatabaseTable::Core
{
public:
    Core(const std::string& path, const std::string& name)
        : m_database(SqlDatabase::create(path, name))
    {
        m_database->execute("BEGIN");
        m_database->execute("CREATE TABLE tqx_columns (table_name TEXT NOT NULL, "
                            "column_name TEXT NOT NULL, unit TEXT, "
                            "PRIMARY KEY (table_name, column_name))");
    }

    std::unique_ptr<TableRows> open(const std::string& name,
                                    const std::vector<TableColumn>& columns)
    {
        const auto describe = m_database->prepare("INSERT INTO tqx_columns VALUES (?,?,?)");
        std::string list = "id INTEGER PRIMARY KEY";
        std::string values = "NULL";
        for (const TableColumn& column : columns) {
            list += ", " + quotedSql(column.name);
            values += ",?";
            describe->setText(1, name);
            describe->setText(2, column.name);
            if (*column.unit != '\0')
                describe->setText(3, column.unit);
            describe->run();
        }
        m_database->execute("CREATE TABLE " + quotedSql(name) + " (" + list + ")");
        return std::make_unique<DatabaseRows>(
            m_database->prepare("INSERT INTO " + quotedSql(name) + " VALUES (" + values + ")"));
    }

    void finish() { m_database->execute("COMMIT"); }

private:
    std::unique_ptr<SqlDatabase> m_database;
};

DatabaseTable::DatabaseTable(const std::string& path, const std::string& name)
    : m_core(std::make_unique<Core>(path, name))
{
}

DatabaseTable::~DatabaseTable() = default;

std::unique_ptr<TableRows> DatabaseTable::open(const char* name,
                                               const std::vector<TableColumn>& columns)
{
    return m_core->open(name, columns);
}

void DatabaseTable::finish()
{
    m_core->finish();
    m_core.reset();
}

} // namespace tqx
