#pragma once

#include "TQX_FieldFacts.h"
#include "TQX_Layout.h"
#include "tqx/log/record/MemberBits.h"
#include "tqx/log/record/RecordPlan.h"
#include "tqx/log/sqlite/SqlColumn.h"
#include "tqx/log/sqlite/SqlDatabase.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/Scale.h"
#include "tqx/log/value/ShownValue.h"
#include "tqx/log/value/ValueNames.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

/// The columns of a table.
class SqlColumns
{
public:
    /// Adds a column under a unique name. Returns its parameter.
    int add(SqlColumn column);

    const std::vector<SqlColumn>& get() const { return m_columns; }

private:
    SqlNames m_names;
    std::vector<SqlColumn> m_columns;
};

/// The cells of one number or character field.
class SqlNumber
{
public:
    SqlNumber(const RecordPlan::Part& part, bool isPart, bool isStored);

    /// The declared type of the column.
    const char* getType() const;

    /// The factor between stored and shown values, 0 for none.
    double getFactor() const { return m_factor; }

    /// Sets the parameter to the value in the bits of the member; leaves it NULL when the value is
    /// not available. `text` holds a text value until the row has been inserted.
    void set(SqlInsert& row, int parameter, uint64_t word, std::string& text) const;

private:
    void setInteger(SqlInsert& row, int parameter, uint64_t value, std::string& text) const;
    void setReal(SqlInsert& row, int parameter, double value) const;

    MemberBits m_bits;
    ValueNames m_names;
    bool m_hasNames = false;
    bool m_isWide = false; ///< unsigned of 64 bits
    bool m_isTime = false; ///< see isContinuousTime()
    double m_factor = 0;
    std::optional<Scale> m_scale;
    std::optional<double> m_notAvailable; ///< of a floating-point field
};

/// Where the members of a record go in the rows of a table: one column per field, those of an
/// embedded sub-block in its place. Arrays of numbers are one cell, in JSON. Arrays of sub-blocks
/// have tables of their own.
class SqlCells
{
public:
    /// Where the fields of a plan are: the prefix of field paths, such as "Type1.", and the part of
    /// it that prefixes column names.
    struct Prefix {
        std::string field;
        std::string column;
    };

    /// Adds the columns of `plan`, which must outlive this.
    SqlCells(const RecordPlan& plan, const Prefix& prefix, bool isStored, SqlColumns& columns);
    ~SqlCells();
    SqlCells(const SqlCells&) = delete;
    SqlCells& operator=(const SqlCells&) = delete;

    /// Sets the cells of a record. They refer to this object until the row has been inserted.
    void set(SqlInsert& row, const void* record);

private:
    struct Step;

    void addStep(const RecordPlan::Member& member, const Prefix& prefix, bool isStored,
                 SqlColumns& columns);
    void setNumber(SqlInsert& row, Step& step, const void* record) const;
    void setText(SqlInsert& row, Step& step, const void* record);
    void setArray(SqlInsert& row, Step& step, const void* record);

    const RecordPlan& m_plan;
    std::deque<Step> m_steps;
    Buffer m_text; ///< of the cell that is being made
};

} // namespace tqx
