#include "tqx/log/table/NestedColumns.h"

#include "TQX_RecordAccess.h"
#include "tqx/log/DataError.h"

#include <cstring>
#include <limits>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Adds the end of a list or text, after so many elements in all.
void pushOffset(ColumnBuffer& offsets, size_t end)
{
    if (end > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
        throw DataError("a batch has more elements than a list can: make batches smaller");
    offsets.push(static_cast<int32_t>(end));
}

void repeatOffset(ColumnBuffer& offsets, size_t count)
{
    const auto end = offsets.last<int32_t>();
    for (; count != 0; --count)
        offsets.push(end);
}

/// Hands offsets over and begins anew.
ColumnBuffer takeOffsets(ColumnBuffer& offsets)
{
    ColumnBuffer taken = std::exchange(offsets, ColumnBuffer());
    offsets.push(int32_t{0});
    return taken;
}

/// Room for as much as the last batch had and a little more: batches are alike.
size_t withMargin(size_t size)
{
    return size + size / 16;
}

/// Latin-1 to UTF-8.
void appendLatin1(ColumnBuffer& out, const char* text, size_t length)
{
    size_t wide = 0;
    for (size_t i = 0; i < length; ++i)
        wide += static_cast<unsigned char>(text[i]) >> 7U;
    uint8_t* to = out.extend(length + wide);
    if (wide == 0) {
        if (length != 0)
            std::memcpy(to, text, length);
        return;
    }
    for (size_t i = 0; i < length; ++i) {
        const auto code = static_cast<unsigned char>(text[i]);
        if (code >= 0x80) {
            *to++ = static_cast<uint8_t>(0xc0U | code >> 6U);
            *to++ = static_cast<uint8_t>(0x80U | (code & 0x3fU));
        } else {
            *to++ = code;
        }
    }
}

} // namespace

TextColumn::TextColumn(const ColumnPlan& column) : m_plan(column)
{
    m_offsets.push(int32_t{0});
}

void TextColumn::appendText(const char* text, size_t capacity)
{
    const void* zero = std::memchr(text, 0, capacity);
    const size_t length =
        zero ? static_cast<size_t>(static_cast<const char*>(zero) - text) : capacity;
    appendLatin1(m_texts, text, length);
    pushOffset(m_offsets, m_texts.size());
}

void TextColumn::append(const Run& run)
{
    const TQX_FieldLayout& field = *m_plan.field;
    const uint32_t offset =
        run.isOnWire ? static_cast<uint32_t>(field.wireOffset) : field.recordOffset;
    for (size_t i = 0; i < run.count; ++i) {
        const void* text = run.at(i) + offset;
        appendText(static_cast<const char*>(text), field.elements);
    }
    m_validity.appendValid(run.count);
}

void TextColumn::appendNulls(size_t count)
{
    repeatOffset(m_offsets, count);
    m_validity.appendNulls(count);
}

void TextColumn::reserve(size_t count)
{
    m_offsets.reserve((count + 1) * sizeof(int32_t));
    m_texts.reserve(m_usualBytes);
}

OwnedArrow<ArrowArray> TextColumn::finish()
{
    ArrayParts parts = takeParts();
    m_usualBytes = withMargin(m_texts.size());
    parts.buffers.push_back(takeOffsets(m_offsets));
    parts.buffers.push_back(std::exchange(m_texts, ColumnBuffer()));
    return exportArray(std::move(parts));
}

FileColumn::FileColumn(const ColumnPlan& column, const std::vector<std::string>& names)
    : TextColumn(column), m_files(names)
{
}

void FileColumn::append(const Run& run)
{
    for (size_t i = 0; i < run.count; ++i) {
        uint32_t number = 0;
        std::memcpy(&number, run.at(i) + m_plan.source.place.offset, sizeof number);
        const std::string& name = m_files[number];
        if (!name.empty())
            std::memcpy(m_texts.extend(name.size()), name.data(), name.size());
        pushOffset(m_offsets, m_texts.size());
    }
    m_validity.appendValid(run.count);
}

ArrayColumn::ArrayColumn(const ColumnPlan& column, const std::vector<std::string>& files)
    : m_plan(column), m_stride(column.children.front().source.size),
      m_items(makeColumn(column.children.front(), files))
{
    if (m_plan.kind == ColumnPlan::Kind::List)
        m_offsets.push(int32_t{0});
}

void ArrayColumn::append(const Run& run)
{
    const bool isCounted = m_plan.kind == ColumnPlan::Kind::List;
    const size_t itemStride = run.isOnWire ? m_plan.wireStride : m_stride;
    size_t count = m_plan.field->elements;
    for (size_t i = 0; i < run.count; ++i) {
        if (isCounted)
            count = TQX_elementCount(*m_plan.type, *m_plan.field, run.at(i));
        m_items->append({run.at(i), itemStride, count, run.revision, run.isOnWire});
        if (isCounted)
            pushOffset(m_offsets, m_items->getLength());
    }
    m_validity.appendValid(run.count);
}

void ArrayColumn::appendNulls(size_t count)
{
    if (m_plan.kind == ColumnPlan::Kind::List) {
        repeatOffset(m_offsets, count);
    } else {
        m_items->appendNulls(count * m_plan.field->elements);
    }
    m_validity.appendNulls(count);
}

void ArrayColumn::reserve(size_t count)
{
    if (m_plan.kind == ColumnPlan::Kind::List) {
        m_offsets.reserve((count + 1) * sizeof(int32_t));
        m_items->reserve(m_usualItems);
    } else {
        m_items->reserve(count * m_plan.field->elements);
    }
}

OwnedArrow<ArrowArray> ArrayColumn::finish()
{
    ArrayParts parts = takeParts();
    m_usualItems = withMargin(m_items->getLength());
    if (m_plan.kind == ColumnPlan::Kind::List)
        parts.buffers.push_back(takeOffsets(m_offsets));
    parts.children.push_back(m_items->finish());
    return exportArray(std::move(parts));
}

StructColumn::StructColumn(const ColumnPlan& plan, const std::vector<std::string>& files)
    : m_offset(plan.field->recordOffset), m_fields(plan.children, files)
{
}

void StructColumn::append(const Run& run)
{
    Run inner = run;
    inner.base += m_offset;
    m_fields.append(inner);
    m_validity.appendValid(run.count);
}

void StructColumn::appendNulls(size_t count)
{
    m_fields.appendNulls(count);
    m_validity.appendNulls(count);
}

void StructColumn::reserve(size_t count)
{
    m_fields.reserve(count);
}

OwnedArrow<ArrowArray> StructColumn::finish()
{
    ArrayParts parts = takeParts();
    m_fields.finish(parts.children);
    return exportArray(std::move(parts));
}

BlocksColumn::BlocksColumn(const ColumnPlan& column, const std::vector<std::string>& files)
    : m_plan(column), m_recordSize(TQX_elementSize(*column.field)),
      m_fields(column.children.front().children, files)
{
    m_offsets.push(int32_t{0});
}

void BlocksColumn::append(const Run& run)
{
    JoinedRun joined;
    const auto use = [&] { m_fields.append(joined.run); };
    for (size_t i = 0; i < run.count; ++i) {
        const uint32_t count = TQX_elementCount(*m_plan.type, *m_plan.field, run.at(i));
        if (count != 0) {
            const auto* first = static_cast<const uint8_t*>(TQX_element(*m_plan.field, run.at(i)));
            joined.add({first, m_recordSize, count, run.revision, false}, use);
            m_entries.appendValid(count);
        }
        pushOffset(m_offsets, m_entries.size());
    }
    joined.end(use);
    m_validity.appendValid(run.count);
}

void BlocksColumn::appendNulls(size_t count)
{
    repeatOffset(m_offsets, count);
    m_validity.appendNulls(count);
}

void BlocksColumn::reserve(size_t count)
{
    m_offsets.reserve((count + 1) * sizeof(int32_t));
    m_fields.reserve(m_usualEntries);
}

OwnedArrow<ArrowArray> BlocksColumn::finish()
{
    m_usualEntries = withMargin(m_entries.size());
    ArrayParts items;
    items.validity = std::exchange(m_entries, Validity());
    m_fields.finish(items.children);
    ArrayParts parts = takeParts();
    parts.buffers.push_back(takeOffsets(m_offsets));
    parts.children.push_back(exportArray(std::move(items)));
    return exportArray(std::move(parts));
}

} // namespace tqx
