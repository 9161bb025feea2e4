#include "SubBlockArray.h"

#include "RecordMembers.h"
#include "TQX_LayoutFunctions.h"
#include "TQX_codec.h"

#include <cstdlib>
#include <cstring>

namespace Kor::MessageApi
{

namespace
{

bool isEntry(const TQX_FieldLayout& field)
{
    return field.kind == TQX_FieldKind::Blocks || field.kind == TQX_FieldKind::Embedded;
}

// Whether there may be something to free.
bool ownsArrays(const TQX_TypeLayout& type)
{
    return type.release != nullptr ||
           (type.described != nullptr && type.firstSubBlock < type.fieldCount);
}

void* copyOf(const void* array, size_t bytes)
{
    void* copy = std::malloc(bytes);
    if (copy != nullptr)
        std::memcpy(copy, array, bytes);
    return copy;
}

// Gives every nested array of an element that lives in the shared allocation one of its own, so
// that the allocation can be resized.
void separateNested(const TQX_TypeLayout& type, void* element)
{
    for (int i = 0; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind != TQX_FieldKind::Blocks ||
            storageOf(field, element) != ArrayStorage::Borrowed)
            continue;
        const size_t bytes = size_t{countOf(type, field, element)} * TQX_elementSize(field);
        setArray(field, element, copyOf(arrayOf(field, element), bytes), ArrayStorage::Own);
    }
}

void separate(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record)
{
    const uint32_t count = countOf(type, field, record);
    switch (storageOf(field, record)) {
    case ArrayStorage::Own:
        break;
    case ArrayStorage::Borrowed:
        setArray(field, record,
                 copyOf(arrayOf(field, record), size_t{count} * TQX_elementSize(field)),
                 ArrayStorage::Own);
        break;
    case ArrayStorage::Shared:
        for (uint32_t i = 0; i < count; ++i)
            separateNested(*field.sub, TQX_element(field, record, i));
        setArray(field, record, arrayOf(field, record), ArrayStorage::Own);
        break;
    }
}

void freeArrays(const TQX_TypeLayout& type, const void* record);

// Usually the only array of an entry is borrowed or empty: one check suffices.
void freeNested(const TQX_TypeLayout& sub, const void* array, uint32_t count)
{
    const TQX_FieldLayout& first = sub.fields[sub.firstSubBlock];
    const bool onlyBlocks =
        first.kind == TQX_FieldKind::Blocks && sub.firstSubBlock + 1 == sub.fieldCount;
    const auto* element = static_cast<const uint8_t*>(array);
    for (; count != 0; --count, element += sub.recordSize) {
        const bool nothing = onlyBlocks && (storageOf(first, element) == ArrayStorage::Borrowed ||
                                            arrayOf(first, element) == nullptr);
        if (!nothing)
            freeArrays(sub, element);
    }
}

// Frees the arrays below a record. The record itself is unchanged: it is usually about to be
// destroyed.
void freeArrays(const TQX_TypeLayout& type, const void* record)
{
    if (!ownsArrays(type))
        return;
    for (int i = type.firstSubBlock; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (!isEntry(field))
            continue;
        const TQX_TypeLayout& sub = *field.sub;
        if (field.kind == TQX_FieldKind::Embedded) {
            freeArrays(sub, TQX_element(field, record));
            continue;
        }
        void* array = arrayOf(field, record);
        if (array == nullptr)
            continue;
        if (ownsArrays(sub))
            freeNested(sub, array, countOf(type, field, record));
        if (storageOf(field, record) != ArrayStorage::Borrowed)
            std::free(array);
    }
}

void forgetArrays(const TQX_TypeLayout& type, void* record)
{
    if (!ownsArrays(type))
        return;
    for (int i = type.firstSubBlock; i < type.fieldCount; ++i) {
        const TQX_FieldLayout& field = type.fields[i];
        if (field.kind == TQX_FieldKind::Embedded) {
            forgetArrays(*field.sub, TQX_element(field, record));
        } else if (field.kind == TQX_FieldKind::Blocks) {
            setArray(field, record, nullptr, ArrayStorage::Own);
            writeUnsigned(type.fields[field.count], record, 0, 0);
        }
    }
}

} // namespace

void* appendElement(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record)
{
    separate(type, field, record);
    const uint32_t count = arrayOf(field, record) == nullptr ? 0 : countOf(type, field, record);
    const size_t bytes = (size_t{count} + 1) * TQX_elementSize(field);
    setArray(field, record, std::realloc(arrayOf(field, record), bytes), ArrayStorage::Own);
    void* element = TQX_element(field, record, count);
    TQX_initRecord(*field.sub, element);
    writeMember<void*>(element, offsetof(KorcgHeader_s, korcg_father), record);
    writeUnsigned(type.fields[field.count], record, 0, uint64_t{count} + 1);
    return element;
}

void* TQX_appendEntry(const TQX_TypeLayout& type, const TQX_FieldLayout& field, void* record)
{
    return appendElement(type, field, record);
}

void TQX_releaseAs(const TQX_TypeLayout& type, void* record)
{
    freeArrays(type, record);
    forgetArrays(type, record);
}

} // namespace Kor::MessageApi

void TQX_release(void* record)
{
    using namespace Kor::MessageApi;
    const TQX_TypeLayout* type = TQX_layout(recordTypeOf(record));
    if (type != nullptr) {
        TQX_releaseAs(*type, record);
    }
}
