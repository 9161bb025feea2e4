#pragma once

#include <nlohmann/json.hpp>
#include <sqlite3.h>

#include <map>
#include <string>
#include <vector>

/// A row by the names of its columns. Numbers keep their type; bytes are {"bytes": "..."}.
using DatabaseRow = std::map<std::string, nlohmann::json>;

/// An SQLite database that is read.
class Database
{
public:
    /// Fails the test when there is none.
    explicit Database(const std::string& path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// The rows that a query gives. Fails the test when it cannot be run.
    std::vector<DatabaseRow> query(const std::string& text) const;

    /// A query with one column as texts.
    std::vector<std::string> texts(const std::string& text) const;

private:
    sqlite3* m_database = nullptr;
};
