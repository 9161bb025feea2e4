#include "TQX_OwnedRecord.h"

#include "TQX_LayoutFunctions.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace Kor::MessageApi
{

namespace
{

constexpr std::align_val_t recordAlignment{alignof(TQX_AnyRecord_u)};

} // namespace

// Decoding leaves a record that it does not get to untouched; a record of type 0 has nothing to
// release.
void TQX_markEmpty(void* record)
{
    std::memset(record, 0, sizeof(TQX_MainHeader_s));
}

TQX_OwnedRecord::TQX_OwnedRecord(size_t size)
    : m_memory(::operator new(std::max(size, sizeof(TQX_MainHeader_s)), recordAlignment)),
      m_size(size)
{
    TQX_markEmpty(m_memory.get());
}

TQX_OwnedRecord::TQX_OwnedRecord() : TQX_OwnedRecord(sizeof(TQX_AnyRecord_u)) {}

TQX_OwnedRecord::TQX_OwnedRecord(const TQX_TypeLayout& type)
    : TQX_OwnedRecord(size_t{type.recordSize})
{
    init(type);
}

TQX_OwnedRecord::~TQX_OwnedRecord()
{
    if (m_memory) {
        clear();
    }
}

TQX_OwnedRecord::TQX_OwnedRecord(TQX_OwnedRecord&& other) noexcept = default;

TQX_OwnedRecord& TQX_OwnedRecord::operator=(TQX_OwnedRecord&& other) noexcept
{
    // The old content moves to `other`.
    std::swap(m_memory, other.m_memory);
    std::swap(m_size, other.m_size);
    std::swap(m_described, other.m_described);
    return *this;
}

void TQX_OwnedRecord::Deleter::operator()(void* memory) const
{
    ::operator delete(memory, recordAlignment);
}

void TQX_OwnedRecord::clear()
{
    if (m_described) {
        TQX_releaseAs(*m_described, get());
        m_described = nullptr;
    } else {
        TQX_release(get());
    }
    TQX_markEmpty(get());
}

void TQX_OwnedRecord::makeRoom(const TQX_TypeLayout& type)
{
    clear();
    if (type.recordSize > m_size)
        *this = TQX_OwnedRecord(size_t{type.recordSize});
    m_described = type.described ? &type : nullptr;
}

void TQX_OwnedRecord::init(const TQX_TypeLayout& type)
{
    makeRoom(type);
    TQX_initRecord(type, get());
}

int32_t TQX_OwnedRecord::decode(TQX_Context_s* context, const uint8_t* bytes, uint16_t size)
{
    clear();
    const int32_t result = TQX_decode(context, bytes, size, get());
    if (result <= 0) {
        clear();
    }
    return result;
}

int32_t TQX_OwnedRecord::decode(const TQX_TypeLayout& type, TQX_Context_s* context,
                                const uint8_t* bytes, uint16_t size)
{
    makeRoom(type);
    const int32_t result = TQX_decodeAs(type, context, bytes, size, get());
    if (result <= 0) {
        clear();
    }
    return result;
}

} // namespace Kor::MessageApi
