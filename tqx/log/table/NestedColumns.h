#pragma once

#include "tqx/log/table/Column.h"

namespace tqx
{

/// The strings of text fields, in UTF-8.
class TextColumn : public Column
{
public:
    explicit TextColumn(const ColumnPlan& plan);

    void append(const Run& run) override;
    void appendNulls(size_t count) override;
    void reserve(size_t count) override;
    OwnedArrow<ArrowArray> finish() override;

protected:
    const ColumnPlan& m_plan;
    ColumnBuffer m_offsets;
    ColumnBuffer m_texts;
    size_t m_usualBytes = 0; ///< of a batch

private:
    void appendText(const char* text, size_t capacity);
};

/// The names of files.
class FileColumn : public TextColumn
{
public:
    FileColumn(const ColumnPlan& plan, const std::vector<std::string>& names);

    void append(const Run& run) override;

private:
    const std::vector<std::string>& m_files;
};

/// Arrays of numbers, lists of a counted or of a fixed number.
class ArrayColumn : public Column
{
public:
    ArrayColumn(const ColumnPlan& plan, const std::vector<std::string>& files);

    void append(const Run& run) override;
    void appendNulls(size_t count) override;
    void reserve(size_t count) override;
    OwnedArrow<ArrowArray> finish() override;

private:
    const ColumnPlan& m_plan;
    uint32_t m_stride;
    std::unique_ptr<Column> m_items;
    size_t m_usualItems = 0; ///< of a batch
    ColumnBuffer m_offsets;  ///< of counted ones
};

/// Embedded sub-blocks.
class StructColumn : public Column
{
public:
    StructColumn(const ColumnPlan& plan, const std::vector<std::string>& files);

    void append(const Run& run) override;
    void appendNulls(size_t count) override;
    void reserve(size_t count) override;
    OwnedArrow<ArrowArray> finish() override;

private:
    uint32_t m_offset; ///< of the sub-record in its owner
    FieldColumns m_fields;
};

/// Arrays of sub-blocks.
class BlocksColumn : public Column
{
public:
    BlocksColumn(const ColumnPlan& plan, const std::vector<std::string>& files);

    void append(const Run& run) override;
    void appendNulls(size_t count) override;
    void reserve(size_t count) override;
    OwnedArrow<ArrowArray> finish() override;

private:
    const ColumnPlan& m_plan;
    uint32_t m_recordSize;
    FieldColumns m_fields;
    Validity m_entries;        ///< none is null
    size_t m_usualEntries = 0; ///< of a batch
    ColumnBuffer m_offsets;
};

} // namespace tqx
