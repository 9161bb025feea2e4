#pragma once

#include "tqx_log_export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace tqx
{

/// A reusable INSERT. Parameters count from 1; those that are not set are NULL.
class TQX_LOG_API SqlInsert
{
public:
    virtual ~SqlInsert() = default;
    SqlInsert(const SqlInsert&) = delete;
    SqlInsert& operator=(const SqlInsert&) = delete;

    virtual void setInteger(int parameter, int64_t value) = 0;
    /// NaN becomes NULL.
    virtual void setReal(int parameter, double value) = 0;
    /// UTF-8. The characters must stay as they are until run().
    virtual void setText(int parameter, std::string_view text) = 0;
    /// Likewise.
    virtual void setBytes(int parameter, const void* bytes, size_t size) = 0;

    /// Inserts the row and sets all parameters back to NULL. Throws DataError.
    virtual void run() = 0;

protected:
    SqlInsert() = default;
};

/// A new SQLite database that is filled in one go: fast, but unusable if the program ends in
/// between.
class TQX_LOG_API SqlDatabase
{
public:
    /// Creates one in the file `path`, which must not exist or must be empty. Errors name it
    /// `name`. Throws DataError, also where this library was built without SQLite.
    static std::unique_ptr<SqlDatabase> create(const std::string& path, const std::string& name);

    virtual ~SqlDatabase() = default;
    SqlDatabase(const SqlDatabase&) = delete;
    SqlDatabase& operator=(const SqlDatabase&) = delete;

    /// Runs statements that return no rows. Throws DataError.
    virtual void execute(const std::string& statements) = 0;

    /// Belongs to the database, and must not be used after it. Throws DataError.
    virtual std::unique_ptr<SqlInsert> prepare(const std::string& statement) = 0;

protected:
    SqlDatabase() = default;
};

} // namespace tqx
