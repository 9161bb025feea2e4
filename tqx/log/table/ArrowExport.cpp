#include "tqx/log/table/ArrowExport.h"

#include <cstring>

namespace tqx
{

namespace
{

/// What an exported type refers to.
struct SchemaContent {
    std::string format;
    std::string name;
    std::string metadata;
    std::vector<OwnedArrow<ArrowSchema>> children;
    std::vector<ArrowSchema*> childPointers;
    OwnedArrow<ArrowSchema> dictionary;
};

/// What an exported array refers to.
struct ArrayContent {
    ArrayParts parts;
    ColumnBuffer bits;
    std::vector<const void*> buffers;
    std::vector<ArrowArray*> childPointers;
    OwnedArrow<ArrowArray> dictionary;
};

template<typename Content, typename Structure>
void release(Structure* structure)
{
    delete static_cast<Content*>(structure->private_data);
    structure->release = nullptr;
}

template<typename Structure>
std::vector<Structure*> pointersTo(std::vector<OwnedArrow<Structure>>& children)
{
    std::vector<Structure*> pointers;
    pointers.reserve(children.size());
    for (OwnedArrow<Structure>& child : children)
        pointers.push_back(&child.get());
    return pointers;
}

void appendNumber(std::string& bytes, size_t number)
{
    const auto value = static_cast<int32_t>(number);
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes.append(raw, sizeof raw);
}

void appendSized(std::string& bytes, const std::string& text)
{
    appendNumber(bytes, text.size());
    bytes += text;
}

std::string packed(const ArrowMetadata& metadata)
{
    std::string bytes;
    if (metadata.empty())
        return bytes;
    appendNumber(bytes, metadata.size());
    for (const auto& [key, value] : metadata) {
        appendSized(bytes, key);
        appendSized(bytes, value);
    }
    return bytes;
}

OwnedArrow<ArrowSchema> describe(std::string format, std::string name,
                                 const ArrowMetadata& metadata, bool isNullable,
                                 std::vector<OwnedArrow<ArrowSchema>> children,
                                 OwnedArrow<ArrowSchema> dictionary)
{
    auto content = std::make_unique<SchemaContent>();
    content->format = std::move(format);
    content->name = std::move(name);
    content->metadata = packed(metadata);
    content->children = std::move(children);
    content->childPointers = pointersTo(content->children);
    content->dictionary = std::move(dictionary);

    OwnedArrow<ArrowSchema> owned;
    ArrowSchema& schema = owned.get();
    schema.format = content->format.c_str();
    schema.name = content->name.c_str();
    schema.metadata = content->metadata.empty() ? nullptr : content->metadata.data();
    schema.flags = isNullable ? ARROW_FLAG_NULLABLE : 0;
    schema.n_children = static_cast<int64_t>(content->childPointers.size());
    schema.children = content->childPointers.data();
    schema.dictionary = content->dictionary.get().release ? &content->dictionary.get() : nullptr;
    schema.release = release<SchemaContent>;
    schema.private_data = content.release();
    return owned;
}

OwnedArrow<ArrowSchema> describeColumn(const ColumnPlan& column)
{
    std::vector<OwnedArrow<ArrowSchema>> children;
    for (const ColumnPlan& child : column.children)
        children.push_back(describeColumn(child));
    OwnedArrow<ArrowSchema> dictionary;
    if (column.names)
        dictionary = describe("u", "", {}, true, {}, {});
    return describe(column.format, column.name, column.metadata, column.isNullable,
                    std::move(children), std::move(dictionary));
}

/// Of content with its buffers and children in place.
OwnedArrow<ArrowArray> wrap(std::unique_ptr<ArrayContent> content, size_t length, size_t nulls)
{
    OwnedArrow<ArrowArray> owned;
    ArrowArray& array = owned.get();
    array.length = static_cast<int64_t>(length);
    array.null_count = static_cast<int64_t>(nulls);
    array.n_buffers = static_cast<int64_t>(content->buffers.size());
    array.buffers = content->buffers.data();
    array.n_children = static_cast<int64_t>(content->childPointers.size());
    array.children = content->childPointers.data();
    array.dictionary = content->dictionary.get().release ? &content->dictionary.get() : nullptr;
    array.release = release<ArrayContent>;
    array.private_data = content.release();
    return owned;
}

OwnedArrow<ArrowArray> exportNames(const std::shared_ptr<const NameDictionary>& names)
{
    auto content = std::make_unique<ArrayContent>();
    content->parts.names = names;
    content->buffers = {nullptr, names->getOffsets().data(), names->getTexts().data()};
    return wrap(std::move(content), names->size(), 0);
}

} // namespace

void releaseArrow(ArrowSchema& schema)
{
    if (schema.release)
        schema.release(&schema);
}

void releaseArrow(ArrowArray& array)
{
    if (array.release)
        array.release(&array);
}

void exportSchema(const std::vector<const ColumnPlan*>& columns, const ArrowMetadata& metadata,
                  ArrowSchema& out)
{
    std::vector<OwnedArrow<ArrowSchema>> children;
    for (const ColumnPlan* column : columns)
        children.push_back(describeColumn(*column));
    out = describe("+s", "", metadata, false, std::move(children), {}).take();
}

OwnedArrow<ArrowArray> exportArray(ArrayParts parts)
{
    auto content = std::make_unique<ArrayContent>();
    content->parts = std::move(parts);
    const size_t length = content->parts.validity.size();
    const size_t nulls = content->parts.validity.getNulls();
    content->bits = content->parts.validity.take();
    content->buffers.push_back(nulls == 0 ? nullptr : content->bits.data());
    for (const ColumnBuffer& buffer : content->parts.buffers)
        content->buffers.push_back(buffer.data());
    content->childPointers = pointersTo(content->parts.children);
    if (content->parts.names)
        content->dictionary = exportNames(content->parts.names);
    return wrap(std::move(content), length, nulls);
}

} // namespace tqx
