#include "tqx/log/DataError.h"
#include "tqx/log/sqlite/SqlDatabase.h"

namespace tqx
{

std::unique_ptr<SqlDatabase> SqlDatabase::create(const std::string&, const std::string& name)
{
    throw DataError(name + ": cannot be written, this program was built without SQLite");
}

} // namespace tqx
