#include "tqx/log/table/TablePlan.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/DataError.h"
#include "tqx/log/record/Members.h"
#include "tqx/log/record/TypeNames.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>
#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Wire heads are in the byte order of the format, and are read directly where that is the
/// machine's.
bool isLittleEndian()
{
    constexpr uint16_t one = 1;
    uint8_t first = 0;
    std::memcpy(&first, &one, 1);
    return first == 1;
}

bool hasConstantPlace(const TQX_FieldLayout& field)
{
    switch (field.kind) {
    case TQX_FieldKind::Value:
    case TQX_FieldKind::Array:
    case TQX_FieldKind::Text:
        return field.wireOffset >= 0 && field.presence != TQX_Presence::Selected;
    case TQX_FieldKind::Bits:
    case TQX_FieldKind::Derived:
        return true;
    default:
        return false;
    }
}

bool isInBlocks(const TQX_FieldLayout& field, unsigned revision)
{
    switch (field.presence) {
    case TQX_Presence::SinceRevision:
        return field.alwaysSent || revision >= field.presenceValue;
    case TQX_Presence::OnlyRevision:
        return field.alwaysSent || revision == field.presenceValue;
    default:
        return true;
    }
}

WireHead headOf(const TQX_TypeLayout& type, const RecordPlan& shown)
{
    WireHead head;
    head.isUsable = isLittleEndian();
    for (const RecordPlan::Member& member : shown.members) {
        const TQX_FieldLayout& field = *member.field;
        const bool isComputed = field.kind == TQX_FieldKind::Derived && !isContinuousTime(field);
        if (isComputed || field.summary != TQX_Summary::None)
            head.isUsable = false;
    }
    for (int row = 0; row < type.fieldCount; ++row) {
        const TQX_FieldLayout& field = type.fields[row];
        if (!hasConstantPlace(field))
            head.isUsable = false;
        if (field.kind == TQX_FieldKind::Bits || field.kind == TQX_FieldKind::Derived)
            continue;
        for (unsigned revision = 0; revision < head.needed.size(); ++revision) {
            if (head.isUsable && isInBlocks(field, revision)) {
                head.needed[revision] =
                    std::max(head.needed[revision], static_cast<uint32_t>(field.wireOffset) +
                                                        TQX_elementSize(field) * field.elements);
            }
        }
    }
    if (!head.isUsable)
        return {};
    constexpr uint32_t alignment = 8;
    head.size = *std::max_element(head.needed.begin(), head.needed.end());
    head.towcOffset = (head.size + alignment - 1) / alignment * alignment;
    head.stride = head.towcOffset + alignment;
    return head;
}

ColumnPlan aboutTime(const char* name, size_t offset, const char* scale, const char* description)
{
    ColumnPlan column;
    column.name = name;
    column.format = "tsn:";
    column.metadata = {{"time_scale", scale}, {"description", description}};
    column.source.place = {static_cast<uint32_t>(offset), sizeof(int64_t), 0, 64, false};
    column.source.size = sizeof(int64_t);
    column.source.hasDoNotUse = true;
    column.source.doNotUse = static_cast<uint64_t>(RowFacts::noTime);
    return column;
}

std::vector<ColumnPlan> planAboutBlock(const TableOptions& options)
{
    std::vector<ColumnPlan> columns;
    columns.push_back(aboutTime("time", offsetof(RowFacts, time), "GPS",
                                "time of the block's header, without leap seconds"));
    if (options.hasUtc) {
        columns.push_back(aboutTime("utc", offsetof(RowFacts, utc), "UTC",
                                    "time of the block's header; a leap second has the time of "
                                    "the second after it"));
    }
    if (options.hasOffset) {
        ColumnPlan column;
        column.name = "offset";
        column.format = "L";
        column.isNullable = false;
        column.metadata = {{"unit", "byte"}, {"description", "where the block is in its file"}};
        column.source.place = {offsetof(RowFacts, offset), sizeof(uint64_t), 0, 64, false};
        column.source.size = sizeof(uint64_t);
        columns.push_back(std::move(column));
    }
    if (options.hasFile) {
        ColumnPlan column;
        column.kind = ColumnPlan::Kind::File;
        column.name = "file";
        column.format = "u";
        column.isNullable = false;
        column.metadata = {{"description", "name of the file that has the block"}};
        column.source.place.offset = offsetof(RowFacts, file);
        columns.push_back(std::move(column));
    }
    return columns;
}

/// The fields that distinguish one record of a type from another, as columns named by their path.
std::vector<ColumnPlan> planIdentity(ColumnPlanner& planner, const TQX_TypeLayout& type,
                                     const OwnerTypes& owners, const std::string& path)
{
    RecordPlan plan = planRecord(type, FieldFilter(), ShownFields::All, owners);
    for (RecordPlan::Member& member : plan.members) {
        auto& parts = member.parts;
        parts.erase(std::remove_if(parts.begin(), parts.end(),
                                   [](const RecordPlan::Part& part) {
                                       return !part.facts->has(TQX_FieldFacts::Identifying);
                                   }),
                    parts.end());
    }
    std::vector<ColumnPlan> columns = planner.columnsOf(plan);
    for (ColumnPlan& column : columns)
        column.name = path + column.name;
    return columns;
}

const TQX_FieldLayout& findSubBlock(const TQX_TypeLayout& type, const std::string& name)
{
    std::vector<std::string_view> known;
    for (int row = 0; row < type.fieldCount; ++row) {
        if (type.fields[row].recordType == 0)
            continue;
        if (name == type.fields[row].name)
            return type.fields[row];
        known.emplace_back(type.fields[row].name);
    }
    throw DataError(unknownName(fmt::format("sub-block of {}", type.name), name, known));
}

/// The filter for what is in a sub-block, or null when the filter does not show it.
const FieldFilter* insideOf(const FieldFilter& filter, const TQX_TypeLayout& type,
                            const TQX_FieldLayout& field)
{
    for (const auto [row, inside] : filter.shownIn(type)) {
        if (&type.fields[row] == &field)
            return inside;
    }
    return nullptr;
}

std::vector<std::string> split(const std::string& path)
{
    std::vector<std::string> names;
    size_t begin = 0;
    while (!path.empty()) {
        const size_t point = path.find('.', begin);
        names.push_back(path.substr(begin, point - begin));
        if (point == std::string::npos)
            break;
        begin = point + 1;
    }
    return names;
}

/// Where names are equal, the parent's gets its type as a prefix.
void makeNamesUnique(std::vector<TablePlan::Level>& levels)
{
    std::set<std::string> known;
    for (auto level = levels.rbegin(); level != levels.rend(); ++level) {
        for (ColumnPlan& column : level->columns) {
            while (!known.insert(column.name).second)
                column.name = std::string(level->type->name) + '.' + column.name;
        }
    }
}

} // namespace

TablePlan::TablePlan(const TQX_TypeLayout& main, const TableOptions& options)
    : aboutBlock(planAboutBlock(options))
{
    if (main.blockNumber == 0)
        throw DataError(fmt::format("{} is a sub-block, a table needs a block", main.name));
    if (options.batchRows == 0 || options.batchBytes == 0)
        throw DataError("a batch needs room for at least one row");
    const std::vector<std::string> path = split(options.rows);
    ColumnPlanner planner(options);
    OwnerTypes owners;
    const FieldFilter* filter = &options.fields;
    std::string prefix;
    const TQX_TypeLayout* type = &main;
    const TQX_FieldLayout* field = nullptr;
    for (const std::string& name : path) {
        levels.push_back({type, field, planIdentity(planner, *type, owners, prefix)});
        owners.push_back(type);
        field = &findSubBlock(*type, name);
        filter = filter ? insideOf(*filter, *type, *field) : nullptr;
        prefix += name + '.';
        type = field->sub;
    }
    if (!filter || !filter->matches(*type))
        throw DataError(fmt::format("no field of {} is chosen", type->name));
    const RecordPlan shown = planRecord(*type, *filter, ShownFields::WithoutFiller, owners);
    if (path.empty())
        wire = headOf(*type, shown);
    levels.push_back({type, field, planner.columnsOf(shown, wire.towcOffset)});
    makeNamesUnique(levels);
}

} // namespace tqx
