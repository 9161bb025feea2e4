#include "Database.h"

#include <gtest/gtest.h>

using nlohmann::json;

namespace
{

json cellOf(sqlite3_stmt* statement, int column)
{
    const auto textOf = [&](const void* bytes) {
        return std::string(static_cast<const char*>(bytes),
                           static_cast<size_t>(sqlite3_column_bytes(statement, column)));
    };
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return int64_t{sqlite3_column_int64(statement, column)};
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_TEXT:
        return textOf(sqlite3_column_text(statement, column));
    case SQLITE_BLOB:
        return {{"bytes", textOf(sqlite3_column_blob(statement, column))}};
    default:
        return nullptr;
    }
}

} // namespace

Database::Database(const std::string& path)
{
    EXPECT_EQ(sqlite3_open_v2(path.c_str(), &m_database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK)
        << path;
}

Database::~Database()
{
    sqlite3_close(m_database);
}

std::vector<DatabaseRow> Database::query(const std::string& text) const
{
    std::vector<DatabaseRow> rows;
    sqlite3_stmt* statement = nullptr;
    EXPECT_EQ(sqlite3_prepare_v2(m_database, text.c_str(), -1, &statement, nullptr), SQLITE_OK)
        << text << ": " << sqlite3_errmsg(m_database);
    int result = SQLITE_DONE;
    while (statement && (result = sqlite3_step(statement)) == SQLITE_ROW) {
        DatabaseRow& row = rows.emplace_back();
        for (int column = 0; column < sqlite3_column_count(statement); ++column)
            row[sqlite3_column_name(statement, column)] = cellOf(statement, column);
    }
    EXPECT_EQ(result, SQLITE_DONE) << text << ": " << sqlite3_errmsg(m_database);
    sqlite3_finalize(statement);
    return rows;
}

std::vector<std::string> Database::texts(const std::string& text) const
{
    std::vector<std::string> found;
    for (const DatabaseRow& row : query(text)) {
        found.push_back(row.begin()->second.is_string() ? row.begin()->second.get<std::string>()
                                                        : row.begin()->second.dump());
    }
    return found;
}
