#include "tqx/log/sqlite/SqlDatabase.h"

#include "tqx/log/DataError.h"

#include <sqlite3.h>

#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

namespace tqx
{

namespace
{

struct Closer {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct Finalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// "log.sqlite: database or disk is full", with the reason of the system where it gave one.
[[noreturn]] void fail(const std::string& name, sqlite3* database, int result)
{
    const int lastError = errno;
    const int kind = result & 0xff;
    if (kind == SQLITE_NOMEM || !database)
        throw std::bad_alloc();
    std::string text = name + ": " + sqlite3_errmsg(database);
    // SQLite does not keep that of a failed commit.
    const int kept = sqlite3_system_errno(database);
    const int reason = kept != 0 ? kept : lastError;
    if ((kind == SQLITE_IOERR || kind == SQLITE_CANTOPEN) && reason != 0)
        text += " (" + std::generic_category().message(reason) + ')';
    throw DataError(text);
}

class Insert : public SqlInsert
{
public:
    Insert(std::string name, sqlite3* database, const std::string& text)
        : m_name(std::move(name)), m_database(database)
    {
        sqlite3_stmt* statement = nullptr;
        const int result =
            sqlite3_prepare_v3(database, text.c_str(), static_cast<int>(text.size()) + 1,
                               SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
        m_statement.reset(statement);
        check(result);
    }

    void setInteger(int parameter, int64_t value) override
    {
        check(sqlite3_bind_int64(m_statement.get(), parameter, value));
    }

    void setReal(int parameter, double value) override
    {
        check(sqlite3_bind_double(m_statement.get(), parameter, value));
    }

    void setText(int parameter, std::string_view text) override
    {
        // A null pointer would be NULL.
        check(sqlite3_bind_text64(m_statement.get(), parameter, text.empty() ? "" : text.data(),
                                  text.size(), SQLITE_STATIC, SQLITE_UTF8));
    }

    void setBytes(int parameter, const void* bytes, size_t size) override
    {
        check(sqlite3_bind_blob64(m_statement.get(), parameter, bytes, size, SQLITE_STATIC));
    }

    void run() override
    {
        errno = 0;
        if (const int result = sqlite3_step(m_statement.get()); result != SQLITE_DONE)
            fail(m_name, m_database, result);
        check(sqlite3_reset(m_statement.get()));
        check(sqlite3_clear_bindings(m_statement.get()));
    }

private:
    void check(int result)
    {
        if (result != SQLITE_OK)
            fail(m_name, m_database, result);
    }

    std::string m_name;
    sqlite3* m_database;
    std::unique_ptr<sqlite3_stmt, Finalizer> m_statement;
};

class Database : public SqlDatabase
{
public:
    Database(const std::string& path, std::string name) : m_name(std::move(name))
    {
        sqlite3* database = nullptr;
        const int result = sqlite3_open_v2(
            path.c_str(), &database,
            SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
        m_database.reset(database);
        if (result != SQLITE_OK)
            fail(m_name, database, result);
        // Rows that do not fit into the cache are written to the file before the end of the
        // transaction.
        execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF;"
                "PRAGMA locking_mode = EXCLUSIVE; PRAGMA temp_store = FILE;"
                "PRAGMA page_size = 8192; PRAGMA cache_size = -32768;");
    }

    void execute(const std::string& statements) override
    {
        errno = 0;
        const int result =
            sqlite3_exec(m_database.get(), statements.c_str(), nullptr, nullptr, nullptr);
        if (result != SQLITE_OK)
            fail(m_name, m_database.get(), result);
    }

    std::unique_ptr<SqlInsert> prepare(const std::string& statement) override
    {
        return std::make_unique<Insert>(m_name, m_database.get(), statement);
    }

private:
    std::string m_name;
    std::unique_ptr<sqlite3, Closer> m_database;
};

} // namespace

std::unique_ptr<SqlDatabase> SqlDatabase::create(const std::string& path, const std::string& name)
{
    return std::make_unique<Database>(path, name);
}

} // namespace tqx
