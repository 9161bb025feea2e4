#include "output/BlockBatch.h"

#include "TQX_OwnedRecord.h"

#include <limits>
#include <new>

namespace tqx::tool
{

using namespace Kor::MessageApi;

BlockBatch::BlockBatch()
    : m_records(static_cast<std::byte*>(
          ::operator new(enoughRecords + sizeof(Record), std::align_val_t(alignof(Record)))))
{
    m_bytes.reserve(enoughBytes + std::numeric_limits<uint16_t>::max());
}

BlockBatch::~BlockBatch()
{
    clear();
}

void BlockBatch::RecordsDeleter::operator()(std::byte* memory) const
{
    ::operator delete(memory, std::align_val_t(alignof(Record)));
}

int32_t BlockBatch::add(StreamState& state, const Block& block, const WeekContext& before)
{
    before.applyTo(state.context);
    const size_t start = m_bytes.size();
    m_bytes.insert(m_bytes.end(), block.data, block.data + block.size);
    const Block copy = {m_bytes.data() + start, block.size, block.offset};
    void* record = m_records.get() + m_recordBytes;
    TQX_markEmpty(record);
    const int32_t result = TQX_decode(&state.context, copy.data, copy.size, record);
    if (result > 0) {
        constexpr size_t mask = alignof(Record) - 1;
        const uint32_t type = static_cast<const KorcgHeader_s*>(record)->korcg_type;
        m_recordBytes += (TQX_layout(type)->recordSize + mask) & ~mask;
        if (state.messages.size() <= type)
            state.messages.resize(type + 1);
        m_entries.push_back({{copy, record, result}, state.messages[type]++});
    } else if (const TQX_TypeLayout* added = result == unknownNumber
                                                 ? state.schema.getAddedBlockType(block.getNumber())
                                                 : nullptr) {
        return addDescribed(state, copy, *added);
    } else {
        TQX_release(record);
        m_entries.push_back({{copy, nullptr, result}, 0});
    }
    return result;
}

int32_t BlockBatch::addDescribed(StreamState& state, const Block& copy, const TQX_TypeLayout& type)
{
    TQX_OwnedRecord record(type);
    const int32_t result = record.decode(type, &state.context, copy.data, copy.size);
    if (result <= 0) {
        m_entries.push_back({{copy, nullptr, result}, 0});
        return result;
    }
    if (state.messages.size() <= type.recordType)
        state.messages.resize(type.recordType + size_t{1});
    m_entries.push_back({{copy, record.get(), result}, state.messages[type.recordType]++});
    m_addedBytes += type.recordSize;
    m_added.push_back(std::move(record));
    return result;
}

void BlockBatch::write(BatchWriter& writer)
{
    for (const BatchEntry& entry : m_entries)
        writer.write(m_text, entry);
}

void BlockBatch::clear()
{
    for (const BatchEntry& entry : m_entries) {
        if (entry.decoded.record) // of a described type it is one that releases itself
            TQX_release(const_cast<void*>(entry.decoded.record));
    }
    m_entries.clear();
    m_bytes.clear();
    m_recordBytes = 0;
    m_added.clear();
    m_addedBytes = 0;
    m_text.clear();
}

} // namespace tqx::tool
