#pragma once

#include "tqx/log/table/Column.h"

#include <array>

namespace tqx
{

/// A column of numbers, of indices of a dictionary or of points in time.
class NumberColumn : public Column
{
public:
    explicit NumberColumn(const ColumnPlan& plan);

    void append(const Run& run) override;
    void appendNulls(size_t count) override;
    void reserve(size_t count) override;
    OwnedArrow<ArrowArray> finish() override;

private:
    /// Sets flags to 1 where a value is available, 0 where it is not.
    using FindAvailable = void (*)(const void* values, size_t count, const NumberSource& source,
                                   uint8_t* flags);
    /// Makes floating-point numbers of stored ones.
    using Apply = void (*)(const void* values, size_t count, const Scale& scale, void* out);

    struct Reading {
        NumberPlace place;
        Gather gather;
    };
    struct Input {
        const DerivedInput* plan;
        Gather gather;
        FindAvailable findAvailable;
    };

    static FindAvailable findAvailableFor(const NumberSource& source, uint32_t size);
    static Apply applyFor(const NumberSource& source);

    void appendSome(const uint8_t* from, const Run& run, const Reading& reading);
    void finishNames(uint8_t* codes, size_t count, const uint8_t* flags) const;
    void checkInputs(const Run& run, uint8_t* flags) const;

    const ColumnPlan& m_plan;
    uint32_t m_size;     ///< of an element of the column in bytes
    uint32_t m_readSize; ///< of size of what is read: stored values, or indices of names
    std::array<Reading, 2> m_readings; ///< in records, on the wire
    FindAvailable m_findAvailable;     ///< null when every value is available
    Apply m_apply;                     ///< null when values are not scaled
    std::vector<Input> m_inputs;
    ColumnBuffer m_values;
};

} // namespace tqx
