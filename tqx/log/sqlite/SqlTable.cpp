#include "tqx/log/sqlite/SqlTable.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx/log/value/Scale.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

constexpr double secondsPerMilli = 0.001;

// Parameters of the first columns of every table of a kind.
constexpr int idColumn = 1;
enum BlockColumn { FileId = 2, FileOffset, Week, TimeOfWeek, GnssTime, UtcTime };
enum EntryColumn { ParentId = 2, Element, BlockId };

SqlColumn key(const char* name, const char* type, const char* description)
{
    SqlColumn column;
    column.name = name;
    column.type = type;
    column.description = description;
    return column;
}

/// The numbers and texts that tell records of a type apart.
std::unique_ptr<RecordPlan> identityOf(const TQX_TypeLayout& type)
{
    auto plan =
        std::make_unique<RecordPlan>(planRecord(type, FieldFilter(), ShownFields::WithoutFiller));
    std::vector<RecordPlan::Member> members = std::move(plan->members);
    plan->members.clear();
    for (RecordPlan::Member& member : members) {
        std::vector<RecordPlan::Part> parts;
        for (const RecordPlan::Part& part : member.parts) {
            if (part.facts->has(TQX_FieldFacts::Identifying))
                parts.push_back(part);
        }
        if (parts.empty() ||
            (member.kind != RecordPlan::Kind::Number && member.kind != RecordPlan::Kind::Text))
            continue;
        member.parts = std::move(parts);
        plan->members.push_back(std::move(member));
    }
    return plan;
}

std::string createStatement(const std::string& table, const std::vector<SqlColumn>& columns)
{
    std::string text;
    for (const SqlColumn& column : columns) {
        text += (text.empty() ? "" : ", ") + quotedSql(column.name);
        if (!column.type.empty())
            text += ' ' + column.type;
    }
    return "CREATE TABLE " + quotedSql(table) + " (" + text + ')';
}

std::string insertStatement(const std::string& table, size_t columns)
{
    std::string text;
    for (; columns != 0; --columns)
        text += text.empty() ? "?" : ",?";
    return "INSERT INTO " + quotedSql(table) + " VALUES (" + text + ')';
}

} // namespace

SqlTable::SqlTable(SqlTables& tables, const RecordPlan& plan)
    : m_plan(plan), m_isStored(tables.isStored), m_name(tables.names.take(plan.type->name))
{
    addKey();
    addFields(tables);
}

SqlTable::SqlTable(SqlTables& tables, const RecordPlan& plan, const SqlTable& parent,
                   const std::string& path)
    : m_plan(plan), m_owner(&parent), m_isStored(tables.isStored),
      m_name(tables.names.take(parent.m_name + '_' + path)), m_parent(parent.m_name),
      m_path(parent.m_path + path + '.')
{
    const std::string references = "INTEGER NOT NULL REFERENCES ";
    m_columns.add(key("id", "INTEGER PRIMARY KEY", ""));
    m_columns.add(key("parent_id", (references + quotedSql(m_parent)).c_str(),
                      "id of the row that this one belongs to"));
    m_columns.add(key("element", "INTEGER NOT NULL", "place in the array, from 0 on"));
    const SqlTable* block = &parent;
    while (block->m_owner)
        block = block->m_owner;
    if (block != &parent) {
        m_columns.add(key("block_id", (references + quotedSql(block->m_name)).c_str(),
                          "id of the row of the block"));
    }
    addOwners(parent);
    addFields(tables);
}

SqlTable::~SqlTable() = default;

void SqlTable::addKey()
{
    m_columns.add(key("id", "INTEGER PRIMARY KEY", "counts all blocks in order"));
    m_columns.add(key("file_id", "INTEGER NOT NULL REFERENCES tqx_files", "where the block was"));
    m_columns.add(key("file_offset", "INTEGER NOT NULL", "of its first byte in that file"));
    SqlColumn week = key("WNc", "INTEGER", "week number, without rollover");
    week.field = week.name;
    week.unit = "week";
    m_columns.add(week);
    SqlColumn time = key("TOW", m_isStored ? "INTEGER" : "REAL", "time of week");
    time.field = time.name;
    time.unit = "second";
    time.scale = secondsPerMilli;
    m_columns.add(time);
    m_columns.add(key("gnss_time", "TEXT", "the same as a date, on the GPS scale"));
    m_columns.add(key("utc_time", "TEXT", "in UTC, by the leap seconds known in 2025"));
}

void SqlTable::addOwners(const SqlTable& parent)
{
    if (parent.m_owner)
        addOwners(*parent.m_owner);
    m_identities.push_back(identityOf(*parent.m_plan.type));
    m_owners.push_back(std::make_unique<SqlCells>(*m_identities.back(),
                                                  SqlCells::Prefix{parent.m_path, parent.m_path},
                                                  m_isStored, m_columns));
}

void SqlTable::addFields(SqlTables& tables)
{
    m_cells =
        std::make_unique<SqlCells>(m_plan, SqlCells::Prefix{m_path, ""}, m_isStored, m_columns);
    tables.database.execute(createStatement(m_name, m_columns.get()));
    m_insert = tables.database.prepare(insertStatement(m_name, m_columns.get().size()));
    addChildren(tables, m_plan, "", {});
}

void SqlTable::addChildren(SqlTables& tables, const RecordPlan& plan, const std::string& path,
                           const std::vector<const RecordPlan::Member*>& through)
{
    for (const RecordPlan::Member& member : plan.members) {
        if (!member.plan || member.plan->members.empty())
            continue;
        const std::string name = path + member.field->name;
        if (member.kind == RecordPlan::Kind::Embedded) {
            std::vector<const RecordPlan::Member*> further = through;
            further.push_back(&member);
            addChildren(tables, *member.plan, name + '.', further);
        } else {
            m_children.push_back(
                {through, &member, plan.type,
                 std::unique_ptr<SqlTable>(new SqlTable(tables, *member.plan, *this, name))});
        }
    }
}

std::vector<const SqlTable*> SqlTable::getChildren() const
{
    std::vector<const SqlTable*> children;
    for (const Child& child : m_children)
        children.push_back(child.table.get());
    return children;
}

void SqlTable::addIndexes(SqlTables& tables) const
{
    if (m_owner) {
        tables.database.execute("CREATE INDEX " +
                                quotedSql(tables.names.take(m_name + "_by_parent")) + " ON " +
                                quotedSql(m_name) + " (parent_id)");
    }
    for (const Child& child : m_children)
        child.table->addIndexes(tables);
}

void SqlTable::insert(const SqlBlock& block, const void* record)
{
    const auto& header = *static_cast<const TQX_MainHeader_s*>(record);
    m_insert->setInteger(idColumn, block.id);
    m_insert->setInteger(FileId, block.file);
    m_insert->setInteger(FileOffset, static_cast<int64_t>(block.offset));
    if (m_isStored || gnssMillis(0, header.WNc))
        m_insert->setInteger(Week, header.WNc);
    if (m_isStored) {
        m_insert->setInteger(TimeOfWeek, header.TOW);
    } else if (gnssMillis(header.TOW, 0)) {
        m_insert->setReal(TimeOfWeek, Scale(secondsPerMilli).apply(header.TOW));
    }
    if (!block.gnssTime.empty()) {
        m_insert->setText(GnssTime, block.gnssTime);
        m_insert->setText(UtcTime, block.utcTime);
    }
    m_cells->set(*m_insert, record);
    m_insert->run();
    ++m_rows;
    insertChildren(block.id, block.id, record);
}

void SqlTable::insertEntry(int64_t block, int64_t parent, uint32_t element, const void* record)
{
    m_insert->setInteger(idColumn, ++m_rows);
    m_insert->setInteger(ParentId, parent);
    m_insert->setInteger(Element, element);
    if (m_owner->m_owner)
        m_insert->setInteger(BlockId, block);
    const void* owner = record;
    for (auto cells = m_owners.rbegin(); cells != m_owners.rend(); ++cells) {
        do {
            owner = TQX_korcgHeader(owner)->korcg_father;
        } while (TQX_korcgHeader(owner)->korcg_type !=
                 m_identities[static_cast<size_t>(m_owners.rend() - cells) - 1]->type->recordType);
        (*cells)->set(*m_insert, owner);
    }
    m_cells->set(*m_insert, record);
    m_insert->run();
    insertChildren(block, m_rows, record);
}

void SqlTable::insertChildren(int64_t block, int64_t id, const void* record)
{
    for (Child& child : m_children) {
        const TQX_TypeLayout* type = m_plan.type;
        const void* owner = record;
        for (const RecordPlan::Member* member : child.through) {
            if (!owner || !TQX_isPresent(*type, *member->field, owner)) {
                owner = nullptr;
                break;
            }
            owner = TQX_element(*member->field, owner);
            type = member->plan->type;
        }
        const TQX_FieldLayout& field = *child.member->field;
        if (!owner || (child.member->isOptional && !TQX_isPresent(*child.owner, field, owner)))
            continue;
        const uint32_t count = TQX_elementCount(*child.owner, field, owner);
        for (uint32_t i = 0; i < count; ++i)
            child.table->insertEntry(block, id, i, TQX_element(field, owner, i));
    }
}

} // namespace tqx
