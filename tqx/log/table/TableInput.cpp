#include "tqx/log/table/TableInput.h"

#include "TQX_codec.h"
#include "korcg_load.h"

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Bytes up to the end of TOW, which is what a decoder reads before it counts weeks.
constexpr size_t endOfTow = 12;

} // namespace

TableInput::~TableInput() = default;

void TableInput::refuse(const TableBlock&, int32_t) {}

StreamInput::StreamInput(BlockStream& blocks, const TQX_TypeLayout& type)
    : stream(blocks), number(type.blockNumber)
{
    TQX_init_context(&context);
}

size_t StreamInput::read(TableBlock* blocks, size_t capacity)
{
    Block block = {};
    while (capacity != 0 && stream.next(block)) {
        if (block.size >= endOfTow && TQX_recordType(block.getNumber()) != 0)
            TQX_continuousTime(&context, korcg_load_u32(block.data + 8));
        if (block.getNumber() != number)
            continue;
        // The stream keeps the bytes of one block at a time.
        *blocks = {block.data, block.size, context.weekCounter, block.offset, stream.getName()};
        return 1;
    }
    return 0;
}

void StreamInput::refuse(const TableBlock& block, int32_t code)
{
    stream.reportUndecodable({block.data, block.size, block.offset}, code);
}

} // namespace tqx
