#pragma once

#include "TQX_Layout.h"
#include "tqx/log/record/FieldFilter.h"
#include "tqx/log/record/MemberReader.h"
#include "tqx/log/select/RowCondition.h"
#include "tqx/log/text/Buffer.h"
#include "tqx/log/value/ValueStyle.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// How the cells of a table are written.
struct CsvStyle {
    ValueStyle values;
    /// Puts an apostrophe before texts that a spreadsheet would take for formulas: those that begin
    /// with = + - @, a tab or a carriage return.
    bool isSafe = false;
    /// Selects rows; null for all. Must outlive the tables, whose types must be among those that it
    /// was made for.
    const RowCondition* rows = nullptr;
};

/// The columns for the records of one type: its fields in their order, those of a sub-block that
/// is embedded in place of its field. Arrays of sub-blocks have tables of their own. Used by one
/// thread at a time.
class TQX_LOG_API CsvTable
{
public:
    /// A table below another one: the entries of an array of sub-blocks.
    struct Child {
        MemberReader member;
        std::unique_ptr<CsvTable> table;
    };

    /// The table of a type, with the fields that the filter shows. Block headers and padding are
    /// shown only if it names them.
    CsvTable(const Kor::MessageApi::TQX_TypeLayout& type, const FieldFilter& shown,
             const CsvStyle& style);
    ~CsvTable();
    CsvTable(const CsvTable&) = delete;
    CsvTable& operator=(const CsvTable&) = delete;

    /// Whether records have a row of their own, besides those of the children.
    bool hasRows() const { return m_showsKey || !m_columns.empty(); }

    /// Names of the columns with their units: "Height [meter]".
    const std::vector<std::string>& getColumns() const { return m_columns; }

    /// The tables of the arrays of sub-blocks, in the order of their fields.
    const std::vector<Child>& getChildren() const { return m_children; }

    /// Whether a record of the type has a row, if the table has any.
    bool accepts(const void* record) const
    {
        return !m_tests || m_style.rows->accepts(*m_tests, record);
    }

    /// Appends the cells of a record of the type, each with a comma in front.
    void appendCells(Buffer& out, const void* record);

    /// Number of entries that a record has in the array of a child.
    static uint32_t countEntries(const Child& child, const void* record)
    {
        return child.member.isPresent(record) ? child.member.countElements(record) : 0;
    }

private:
    struct Step;

    CsvTable(const RecordPlan& plan, const CsvStyle& style,
             const Kor::MessageApi::TQX_TypeLayout& main, const RowCondition::Path& path);
    void add(const RecordPlan& plan, const RecordPlan::Member& member,
             const Kor::MessageApi::TQX_TypeLayout& main, const RowCondition::Path& path);
    void addStep(const RecordPlan& plan, const RecordPlan::Member& member);
    void addCells(Step& step, const std::vector<RecordPlan::Part>& parts);
    void appendNumber(Buffer& out, Step& step, const void* record) const;
    void appendOther(Buffer& out, Step& step, const void* record) const;

    const Kor::MessageApi::TQX_TypeLayout& m_type;
    CsvStyle m_style;
    std::vector<std::string> m_columns;
    std::vector<Step> m_steps;
    std::vector<Child> m_children;
    const RowCondition::Tests* m_tests; ///< of the rows, or null
    bool m_showsKey = false;            ///< the filter names what the key columns hold
};

} // namespace tqx
