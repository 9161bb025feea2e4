#include "output/BlockBatch.h"

#include "TQX_OwnedRecord.h"

#include <limits>
#include <new>

namespace tqx::tool
{

using namespace Kor::MessageApi;

BlockBatch::BlockBatch()
    : records(static_cast<std::byte*>(
          ::operator new(enoughRecords + sizeof(Record), std::align_val_t(alignof(Record)))))
{
    bytes.reserve(enoughBytes + std::numeric_limits<uint16_t>::max());
}

BlockBatch::~BlockBatch()
{
    clear();
}

void BlockBatch::RecordsDeleter::operator()(std::byte* memory) const
{
    ::operator delete(memory, std::align_val_t(alignof(Record)));
}

int32_t BlockBatch::add(TQX_Context_s& context, const Block& block)
{
    const size_t start = bytes.size();
    bytes.insert(bytes.end(), block.data, block.data + block.size);
    const Block copy = {bytes.data() + start, block.size, block.offset};
    void* record = records.get() + recordBytes;
    TQX_markEmpty(record);
    const int32_t result = TQX_decode(&context, copy.data, copy.size, record);
    if (result > 0) {
        constexpr size_t mask = alignof(Record) - 1;
        const uint32_t type = static_cast<const KorcgHeader_s*>(record)->korcg_type;
        recordBytes += (TQX_layout(type)->recordSize + mask) & ~mask;
        entries.push_back({copy, record, result});
    } else {
        TQX_release(record);
        entries.push_back({copy, nullptr, result});
    }
    return result;
}

void BlockBatch::write(BlockWriter& writer)
{
    for (const DecodedBlock& entry : entries)
        if (entry.record)
            writer.write(text, entry);
        else
            writer.writeOther(text, entry);
}

void BlockBatch::clear()
{
    for (const DecodedBlock& entry : entries)
        if (entry.record)
            TQX_release(const_cast<void*>(entry.record));
    entries.clear();
    bytes.clear();
    recordBytes = 0;
    text.clear();
}

} // namespace tqx::tool
