#include "tqx/log/table/IndexInput.h"

#include "TQX_codec.h"
#include "korcg_load.h"

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

/// The week counter after a block, which is one of a known type.
uint8_t weekAfter(const Block& block, const WeekContext& before)
{
    constexpr size_t endOfTow = 12;
    TQX_Context_s context{};
    before.applyTo(context);
    if (block.size >= endOfTow)
        TQX_continuousTime(&context, korcg_load_u32(block.data + 8));
    return context.weekCounter;
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
        blocks[count] = {block.data, block.size, weekAfter(block, m_found.getContext()),
                         block.offset, m_name};
    }
    return count;
}

void IndexInput::refuse(const TableBlock& block, int32_t code)
{
    if (m_listener)
        m_listener->onUndecodable(m_name, {block.data, block.size, block.offset}, code);
}

} // namespace tqx
