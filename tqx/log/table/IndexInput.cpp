#include "tqx/log/table/IndexInput.h"

#include <utility>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

BlockQuery queryOf(BlockQuery query, const TQX_TypeLayout& type)
{
    query.numbers = {type.blockNumber};
    return query;
}

} // namespace

IndexInput::IndexInput(const Index& index, const RandomAccess& log, const TQX_TypeLayout& type,
                       BlockQuery query, StreamListener* hears)
    : m_name(log.getName()), m_found(index, log, queryOf(std::move(query), type)),
      m_listener(hears), m_isInMemory(log.getBytes() != nullptr)
{
}

size_t IndexInput::read(TableBlock* blocks, size_t capacity)
{
    const size_t most = m_isInMemory ? capacity : 1;
    size_t count = 0;
    for (Block block = {}; count < most && m_found.next(block); ++count) {
        WeekContext week = m_found.getContext();
        week.followKnown(block);
        blocks[count] = {block.data, block.size, week.weekCounter, block.offset, m_name};
    }
    return count;
}

void IndexInput::refuse(const TableBlock& block, int32_t code)
{
    if (m_listener)
        m_listener->onUndecodable(m_name, {block.data, block.size, block.offset}, code);
}

} // namespace tqx
