#pragma once

#include "tqx/log/select/Expression.h"
#include "tqx/log/select/FieldTest.h"
#include "tqx/log/select/TypeSelection.h"
#include "tqx_log_export.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tqx
{

/// A condition on the rows of tables, where a row is about one record: a message, or an element of
/// an array of sub-blocks in it.
///
/// A name is that of a field of the record or else of one that the record is in, the nearest first;
/// "Type1.SVID" is SVID of the element of Type1 that the record is or is in, and the name of the
/// block may come before all. Comparisons are those of Condition: false for a field that is absent
/// or not available. There is no `any`: a row has one element of each array.
///
/// Immutable once made: any number of threads may use the same one.
class TQX_LOG_API RowCondition
{
public:
    /// The fields of sub-blocks that lead from a main block to the records of a table; none for the
    /// main block itself.
    using Path = std::vector<const Kor::MessageApi::TQX_FieldLayout*>;

    /// The condition resolved for one table.
    class Tests;

    /// Resolves names among the main types that `types` accepts. Throws DataError for an
    /// expression that cannot be read, names that none of their tables has, and comparisons that a
    /// field does not have.
    RowCondition(const std::string& text, const TypeSelection& types);
    ~RowCondition();
    RowCondition(const RowCondition&) = delete;
    RowCondition& operator=(const RowCondition&) = delete;

    /// The tests for a table of a main type, null when the type is not selected. They live as long
    /// as the condition.
    const Tests* find(const Kor::MessageApi::TQX_TypeLayout& type, const Path& path) const;

    /// Whether the condition holds for a record of the table, whose parent links are set.
    bool accepts(const Tests& tests, const void* record) const;

private:
    struct Table;
    struct Term {
        bool isKnown = false; ///< whether some table has the field
        bool isTest = false;  ///< whether it can be compared there
        std::string why;      ///< it cannot
    };

    void addTables(Table& table, std::vector<Term>& terms);
    void checkTerms(const std::vector<Term>& terms) const;
    bool holds(size_t node, const Tests& tests, const void* record) const;

    Schema m_schema;
    Expression m_expression;
    std::map<std::pair<uint32_t, Path>, Tests> m_tests; ///< by record type of the main block
    std::set<std::string_view> m_names;                 ///< of all fields that there are
};

} // namespace tqx
