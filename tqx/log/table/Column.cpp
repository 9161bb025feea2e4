#include "tqx/log/table/Column.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/table/NestedColumns.h"
#include "tqx/log/table/NumberColumn.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

Column::~Column() = default;

ArrayParts Column::takeParts()
{
    ArrayParts parts;
    parts.validity = std::exchange(m_validity, Validity());
    return parts;
}

std::unique_ptr<Column> makeColumn(const ColumnPlan& plan, const std::vector<std::string>& files)
{
    switch (plan.kind) {
    case ColumnPlan::Kind::Number:
        return std::make_unique<NumberColumn>(plan);
    case ColumnPlan::Kind::Text:
        return std::make_unique<TextColumn>(plan);
    case ColumnPlan::Kind::File:
        return std::make_unique<FileColumn>(plan, files);
    case ColumnPlan::Kind::List:
    case ColumnPlan::Kind::FixedList:
        return std::make_unique<ArrayColumn>(plan, files);
    case ColumnPlan::Kind::Struct:
        return std::make_unique<StructColumn>(plan, files);
    case ColumnPlan::Kind::Blocks:
        return std::make_unique<BlocksColumn>(plan, files);
    }
    return nullptr;
}

FieldColumns::FieldColumns(const std::vector<ColumnPlan>& plans,
                           const std::vector<std::string>& files)
{
    for (const ColumnPlan& plan : plans)
        m_fields.push_back({&plan, makeColumn(plan, files)});
}

void FieldColumns::append(const Run& run)
{
    for (const Field& each : m_fields) {
        const TQX_FieldLayout* field = each.plan->field;
        bool isPresent = true;
        if (field && field->presence != TQX_Presence::Always) {
            if (field->presence == TQX_Presence::Selected) {
                appendSelected(each, run);
                continue;
            }
            isPresent = field->presence == TQX_Presence::SinceRevision
                            ? run.revision >= field->presenceValue
                            : run.revision == field->presenceValue;
        }
        if (isPresent) {
            each.column->append(run);
        } else {
            each.column->appendNulls(run.count);
        }
    }
}

void FieldColumns::appendSelected(const Field& field, const Run& run)
{
    const ColumnPlan& plan = *field.plan;
    const auto isPresent = [&](size_t index) {
        return TQX_isPresent(*plan.type, *plan.field, run.at(index));
    };
    for (size_t first = 0; first < run.count;) {
        const bool isThere = isPresent(first);
        size_t end = first + 1;
        while (end < run.count && isPresent(end) == isThere)
            ++end;
        if (isThere) {
            field.column->append(run.part(first, end));
        } else {
            field.column->appendNulls(end - first);
        }
        first = end;
    }
}

void FieldColumns::appendNulls(size_t count)
{
    for (const Field& field : m_fields)
        field.column->appendNulls(count);
}

void FieldColumns::reserve(size_t count)
{
    for (const Field& field : m_fields)
        field.column->reserve(count);
}

void FieldColumns::finish(std::vector<OwnedArrow<ArrowArray>>& out)
{
    for (const Field& field : m_fields)
        out.push_back(field.column->finish());
}

} // namespace tqx
