#include "MessageDecoder.h"

#include "Message.h"
#include "TQX_FormatInfo.h"

namespace tqx
{

MessageDecoder::MessageDecoder() : decoder((TQX_FormatInfo::getInstance(), nullptr))
{
    QObject::connect(&decoder, &MessageSource::newMessage,
                     [this](const Message* published) { keep(published); });
}

MessageDecoder::~MessageDecoder()
{
    drop();
}

int32_t MessageDecoder::decode(const Block& block)
{
    drop();
    return decoder.decodeMessage(block.data, block.size);
}

void MessageDecoder::keep(const Message* published)
{
    published->addReference();
    message = published;
}

void MessageDecoder::drop()
{
    if (message)
        message->removeReference();
    message = nullptr;
}

} // namespace tqx
