#include "tqx/gnss/table/TableRows.h"

namespace tqx
{

TableRows::~TableRows() = default;

TableTarget::~TableTarget() = default;

std::vector<TableColumn> TableRows::withTime(const std::vector<TableColumn>& columns)
{
    std::vector<TableColumn> all = {{"WNc", "week"}, {"TOW", "second"}, {"UTC"}};
    all.insert(all.end(), columns.begin(), columns.end());
    return all;
}

} // namespace tqx
