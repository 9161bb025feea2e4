#include "MessageDecoder.h"

#include "Message.h"
#include "TQX_FormatInfo.h"

namespace tqx
{

MessageDecoder::MessageDecoder() : m_decoder((TQX_FormatInfo::getInstance(), nullptr))
{
    QObject::connect(&m_decoder, &MessageSource::newMessage,
                     [this](const Message* published) { keep(published); });
}

MessageDecoder::~MessageDecoder()
{
    drop();
}

int32_t MessageDecoder::decode(const Block& block)
{
    drop();
    return m_decoder.decodeMessage(block.data, block.size);
}

void MessageDecoder::keep(const Message* published)
{
    published->addReference();
    m_message = published;
}

void MessageDecoder::drop()
{
    if (m_message)
        m_message->removeReference();
    m_message = nullptr;
}

} // namespace tqx
