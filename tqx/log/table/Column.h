#pragma once

#include "tqx/log/table/ArrowExport.h"
#include "tqx/log/table/ColumnPlan.h"
#include "tqx/log/table/Validity.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tqx
{

/// Records of one type, or blocks as on the wire, at a constant distance from each other; the
/// distance is 0 to repeat one of them. All are of one revision.
struct Run {
    const uint8_t* base;
    size_t stride;
    size_t count;
    unsigned revision;
    bool isOnWire;

    const uint8_t* at(size_t index) const { return base + index * stride; }
    Run part(size_t first, size_t end) const
    {
        return {at(first), stride, end - first, revision, isOnWire};
    }
};

/// Joins runs that are adjacent in memory. Decoding puts the arrays of an array's entries next to
/// each other, and longer runs fill columns faster.
struct JoinedRun {
    Run run = {nullptr, 0, 0, 0, false};

    /// Adds a run, which must not be empty; calls `use` first if it is not adjacent to what is
    /// there.
    template<typename Use>
    void add(const Run& next, const Use& use)
    {
        if (run.count != 0 && next.base == run.at(run.count)) {
            run.count += next.count;
            return;
        }
        end(use);
        run = next;
    }

    /// Calls `use` if there is a run, and begins anew.
    template<typename Use>
    void end(const Use& use)
    {
        if (run.count != 0)
            use();
        run.count = 0;
    }
};

/// Values of a column that is being filled.
class Column
{
public:
    virtual ~Column();
    Column(const Column&) = delete;
    Column& operator=(const Column&) = delete;

    /// Adds the value of each record, all of which have the field. Throws std::bad_alloc, and
    /// DataError when the column is full; it must not be used after that.
    virtual void append(const Run& run) = 0;

    virtual void appendNulls(size_t count) = 0;

    /// Makes room for that many values, as far as their size is known.
    virtual void reserve(size_t count) = 0;

    size_t getLength() const { return m_validity.size(); }

    /// Hands the values over and begins anew, with no values. Throws std::bad_alloc; the values are
    /// lost then.
    virtual OwnedArrow<ArrowArray> finish() = 0;

protected:
    Column() = default;

    /// The length and validity of the array, taken from the column.
    ArrayParts takeParts();

    Validity m_validity;
};

/// Makes a column for the plan, which must outlive it. Columns of kind File hold numbers of
/// `files`.
std::unique_ptr<Column> makeColumn(const ColumnPlan& plan, const std::vector<std::string>& files);

/// The columns of the records of one type.
class FieldColumns
{
public:
    FieldColumns(const std::vector<ColumnPlan>& plans, const std::vector<std::string>& files);

    void append(const Run& run);
    void appendNulls(size_t count);
    void reserve(size_t count);

    /// Appends the arrays to `out`.
    void finish(std::vector<OwnedArrow<ArrowArray>>& out);

private:
    struct Field {
        const ColumnPlan* plan;
        std::unique_ptr<Column> column;
    };

    static void appendSelected(const Field& field, const Run& run);

    std::vector<Field> m_fields;
};

} // namespace tqx
