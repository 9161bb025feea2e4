#include "tqx/log/record/RecordDecoder.h"

namespace tqx
{

RecordDecoder::RecordDecoder()
{
    TQX_init_context(&m_context);
}

int32_t RecordDecoder::decode(const Block& block)
{
    m_last = block;
    m_consumed = m_record.decode(&m_context, block.data, block.size);
    return m_consumed;
}

int32_t RecordDecoder::decode(const Block& block, const WeekContext& context)
{
    context.applyTo(m_context);
    return decode(block);
}

} // namespace tqx
