#include "tqx/log/record/RecordDecoder.h"

namespace tqx
{

RecordDecoder::RecordDecoder(const Schema& schema) : m_schema(schema)
{
    TQX_init_context(&m_context);
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

} // namespace tqx
