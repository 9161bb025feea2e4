#include "tqx/log/record/RecordDecoder.h"

#include <utility>

namespace tqx
{

RecordDecoder::RecordDecoder(const Schema& schema) : m_schema(schema)
{
    TQX_init_context(&m_context);
}

RecordDecoder& RecordDecoder::operator=(RecordDecoder&& other) noexcept
{
    std::swap(m_schema, other.m_schema);
    std::swap(m_context, other.m_context);
    std::swap(m_record, other.m_record);
    std::swap(m_last, other.m_last);
    std::swap(m_consumed, other.m_consumed);
    return *this;
}

int32_t RecordDecoder::decode(const Block& block)
{
    m_last = block;
    m_consumed = m_record.decode(&m_context, block.data, block.size);
    if (m_consumed == unknownNumber && m_schema.hasAddedTypes()) {
        const Kor::MessageApi::TQX_TypeLayout* added =
            m_schema.getAddedBlockType(block.getNumber());
        if (added)
            m_consumed = m_record.decode(*added, &m_context, block.data, block.size);
    }
    return m_consumed;
}

int32_t RecordDecoder::decode(const Block& block, const WeekContext& context)
{
    context.applyTo(m_context);
    return decode(block);
}

} // namespace tqx
