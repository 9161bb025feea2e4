#include "tqx/log/table/TableSchema.h"

#include "tqx/log/table/ArrowExport.h"
#include "tqx/log/table/TablePlan.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

std::vector<const ColumnPlan*> columnsOf(const TablePlan& plan)
{
    std::vector<const ColumnPlan*> columns;
    for (const ColumnPlan& column : plan.aboutBlock)
        columns.push_back(&column);
    for (const TablePlan::Level& level : plan.levels) {
        for (const ColumnPlan& column : level.columns)
            columns.push_back(&column);
    }
    return columns;
}

} // namespace

TableSchema::TableSchema(const TQX_TypeLayout& layout, TableOptions chosen)
    : m_type(layout), m_options(std::move(chosen)),
      m_plan(std::make_unique<const TablePlan>(layout, m_options))
{
}

TableSchema::~TableSchema() = default;

std::vector<std::string> TableSchema::getNames() const
{
    std::vector<std::string> names;
    for (const ColumnPlan* column : columnsOf(*m_plan))
        names.push_back(column->name);
    return names;
}

void TableSchema::exportTo(ArrowSchema& out) const
{
    ArrowMetadata metadata = {{"block", m_type.name},
                              {"number", std::to_string(m_type.blockNumber)}};
    if (const std::string_view description = TQX_description(TQX_factsOf(m_type));
        !description.empty())
        metadata.emplace_back("description", description);
    exportSchema(columnsOf(*m_plan), metadata, out);
}

} // namespace tqx
