#include "tqx/log/table/TableInput.h"

#include "TQX_codec.h"

namespace tqx
{

using namespace Kor::MessageApi;

TableInput::~TableInput() = default;

void TableInput::refuse(const TableBlock&, int32_t) {}

StreamInput::StreamInput(BlockStream& blocks, const TQX_TypeLayout& type)
    : m_stream(blocks), m_number(type.blockNumber)
{
    TQX_init_context(&m_context);
}

size_t StreamInput::read(TableBlock* blocks, size_t capacity)
{
    Block block = {};
    while (capacity != 0 && m_stream.next(block)) {
        if (block.getNumber() != m_number)
            continue;
        WeekContext week = m_stream.getContext();
        week.followKnown(block);
        week.applyTo(m_context);
        // The stream keeps the bytes of one block at a time.
        *blocks = {block.data, block.size, m_context.weekCounter, block.offset, m_stream.getName()};
        return 1;
    }
    return 0;
}

void StreamInput::refuse(const TableBlock& block, int32_t code)
{
    m_stream.reportUndecodable({block.data, block.size, block.offset}, code);
}

} // namespace tqx
