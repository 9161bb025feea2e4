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

/// Adds the end of a list or text, of which so many elements are before it.
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

TextColumn::TextColumn(const ColumnPlan& column) : plan(column)
{
    offsets.push(int32_t{0});
}

void TextColumn::appendText(const char* text, size_t capacity)
{
    const void* zero = std::memchr(text, 0, capacity);
    const size_t length =
        zero ? static_cast<size_t>(static_cast<const char*>(zero) - text) : capacity;
    appendLatin1(texts, text, length);
    pushOffset(offsets, texts.size());
}

void TextColumn::append(const Run& run)
{
    const TQX_FieldLayout& field = *plan.field;
    const uint32_t offset =
        run.isOnWire ? static_cast<uint32_t>(field.wireOffset) : field.recordOffset;
    for (size_t i = 0; i < run.count; ++i) {
        const void* text = run.at(i) + offset;
        appendText(static_cast<const char*>(text), field.elements);
    }
    validity.appendValid(run.count);
}

void TextColumn::appendNulls(size_t count)
{
    repeatOffset(offsets, count);
    validity.appendNulls(count);
}

void TextColumn::reserve(size_t count)
{
    offsets.reserve((count + 1) * sizeof(int32_t));
    texts.reserve(usualBytes);
}

OwnedArrow<ArrowArray> TextColumn::finish()
{
    ArrayParts parts = takeParts();
    usualBytes = withMargin(texts.size());
    parts.buffers.push_back(takeOffsets(offsets));
    parts.buffers.push_back(std::exchange(texts, ColumnBuffer()));
    return exportArray(std::move(parts));
}

FileColumn::FileColumn(const ColumnPlan& column, const std::vector<std::string>& names)
    : TextColumn(column), files(names)
{
}

void FileColumn::append(const Run& run)
{
    for (size_t i = 0; i < run.count; ++i) {
        uint32_t number = 0;
        std::memcpy(&number, run.at(i) + plan.source.place.offset, sizeof number);
        const std::string& name = files[number];
        if (!name.empty())
            std::memcpy(texts.extend(name.size()), name.data(), name.size());
        pushOffset(offsets, texts.size());
    }
    validity.appendValid(run.count);
}

ArrayColumn::ArrayColumn(const ColumnPlan& column, const std::vector<std::string>& files)
    : plan(column), stride(column.children.front().source.size),
      items(makeColumn(column.children.front(), files))
{
    if (plan.kind == ColumnPlan::Kind::List)
        offsets.push(int32_t{0});
}

void ArrayColumn::append(const Run& run)
{
    const bool isCounted = plan.kind == ColumnPlan::Kind::List;
    const size_t itemStride = run.isOnWire ? plan.wireStride : stride;
    size_t count = plan.field->elements;
    for (size_t i = 0; i < run.count; ++i) {
        if (isCounted)
            count = TQX_elementCount(*plan.type, *plan.field, run.at(i));
        items->append({run.at(i), itemStride, count, run.revision, run.isOnWire});
        if (isCounted)
            pushOffset(offsets, items->getLength());
    }
    validity.appendValid(run.count);
}

void ArrayColumn::appendNulls(size_t count)
{
    if (plan.kind == ColumnPlan::Kind::List)
        repeatOffset(offsets, count);
    else
        items->appendNulls(count * plan.field->elements);
    validity.appendNulls(count);
}

void ArrayColumn::reserve(size_t count)
{
    if (plan.kind == ColumnPlan::Kind::List) {
        offsets.reserve((count + 1) * sizeof(int32_t));
        items->reserve(usualItems);
    } else {
        items->reserve(count * plan.field->elements);
    }
}

OwnedArrow<ArrowArray> ArrayColumn::finish()
{
    ArrayParts parts = takeParts();
    usualItems = withMargin(items->getLength());
    if (plan.kind == ColumnPlan::Kind::List)
        parts.buffers.push_back(takeOffsets(offsets));
    parts.children.push_back(items->finish());
    return exportArray(std::move(parts));
}

StructColumn::StructColumn(const ColumnPlan& plan, const std::vector<std::string>& files)
    : offset(plan.field->recordOffset), fields(plan.children, files)
{
}

void StructColumn::append(const Run& run)
{
    Run inner = run;
    inner.base += offset;
    fields.append(inner);
    validity.appendValid(run.count);
}

void StructColumn::appendNulls(size_t count)
{
    fields.appendNulls(count);
    validity.appendNulls(count);
}

void StructColumn::reserve(size_t count)
{
    fields.reserve(count);
}

OwnedArrow<ArrowArray> StructColumn::finish()
{
    ArrayParts parts = takeParts();
    fields.finish(parts.children);
    return exportArray(std::move(parts));
}

BlocksColumn::BlocksColumn(const ColumnPlan& column, const std::vector<std::string>& files)
    : plan(column), recordSize(TQX_elementSize(*column.field)),
      fields(column.children.front().children, files)
{
    offsets.push(int32_t{0});
}

void BlocksColumn::append(const Run& run)
{
    JoinedRun joined;
    const auto use = [&] { fields.append(joined.run); };
    for (size_t i = 0; i < run.count; ++i) {
        const uint32_t count = TQX_elementCount(*plan.type, *plan.field, run.at(i));
        if (count != 0) {
            const auto* first = static_cast<const uint8_t*>(TQX_element(*plan.field, run.at(i)));
            joined.add({first, recordSize, count, run.revision, false}, use);
            entries.appendValid(count);
        }
        pushOffset(offsets, entries.size());
    }
    joined.end(use);
    validity.appendValid(run.count);
}

void BlocksColumn::appendNulls(size_t count)
{
    repeatOffset(offsets, count);
    validity.appendNulls(count);
}

void BlocksColumn::reserve(size_t count)
{
    offsets.reserve((count + 1) * sizeof(int32_t));
    fields.reserve(usualEntries);
}

OwnedArrow<ArrowArray> BlocksColumn::finish()
{
    usualEntries = withMargin(entries.size());
    ArrayParts items;
    items.validity = std::exchange(entries, Validity());
    fields.finish(items.children);
    ArrayParts parts = takeParts();
    parts.buffers.push_back(takeOffsets(offsets));
    parts.children.push_back(exportArray(std::move(items)));
    return exportArray(std::move(parts));
}

} // namespace tqx
