#pragma once

#include "tqx/log/record/RecordPlan.h"
#include "tqx/log/sqlite/SqlCells.h"
#include "tqx/log/sqlite/SqlDatabase.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// What a row says about a block besides its fields. Texts are empty where the time is not known.
struct SqlBlock {
    int64_t id;
    int64_t file;
    uint64_t offset;
    std::string gnssTime;
    std::string utcTime;
};

/// What the tables of a database have in common.
struct SqlTables {
    SqlDatabase& database;
    SqlNames names; ///< of tables and indexes
    bool isStored;
};

/// The table of a type, or of an array of sub-blocks, and those of the arrays in it.
class SqlTable
{
public:
    /// Creates the table of a main type. The plan shows it without week and time of week, and must
    /// outlive it.
    SqlTable(SqlTables& tables, const RecordPlan& plan);
    ~SqlTable();
    SqlTable(const SqlTable&) = delete;
    SqlTable& operator=(const SqlTable&) = delete;

    /// Inserts the rows of a record.
    void insert(const SqlBlock& block, const void* record);

    const std::string& getName() const { return m_name; }
    const std::string& getParent() const { return m_parent; }
    const Kor::MessageApi::TQX_TypeLayout& getType() const { return *m_plan.type; }
    const std::vector<SqlColumn>& getColumns() const { return m_columns.get(); }
    int64_t getRows() const { return m_rows; }
    std::vector<const SqlTable*> getChildren() const;

    /// Creates the indexes by parent, once all rows are there.
    void addIndexes(SqlTables& tables) const;

private:
    /// An array of sub-blocks, maybe inside embedded ones.
    struct Child {
        std::vector<const RecordPlan::Member*> through;
        const RecordPlan::Member* member;
        const Kor::MessageApi::TQX_TypeLayout* owner; ///< type that has the member
        std::unique_ptr<SqlTable> table;
    };

    SqlTable(SqlTables& tables, const RecordPlan& plan, const SqlTable& parent,
             const std::string& path);
    void addKey();
    void addOwners(const SqlTable& parent);
    void addFields(SqlTables& tables);
    void addChildren(SqlTables& tables, const RecordPlan& plan, const std::string& path,
                     const std::vector<const RecordPlan::Member*>& through);
    void insertEntry(int64_t block, int64_t parent, uint32_t element, const void* record);
    void insertChildren(int64_t block, int64_t id, const void* record);

    const RecordPlan& m_plan;
    const SqlTable* m_owner = nullptr; ///< the table of what the sub-blocks are in
    bool m_isStored;
    std::string m_name;
    std::string m_parent;
    std::string m_path; ///< "Type1.Type2."
    SqlColumns m_columns;
    /// What identifies the enclosing records, from the block on.
    std::vector<std::unique_ptr<RecordPlan>> m_identities;
    std::vector<std::unique_ptr<SqlCells>> m_owners;
    std::unique_ptr<SqlCells> m_cells;
    std::unique_ptr<SqlInsert> m_insert;
    std::vector<Child> m_children;
    int64_t m_rows = 0;
};

} // namespace tqx
