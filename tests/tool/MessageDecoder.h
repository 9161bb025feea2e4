#pragma once

#include "TQXDecoder.h"
#include "tqx/log/stream/Block.h"

namespace tqx
{

/// Decodes blocks into messages, for tests that compare what is shown with the metadata.
class MessageDecoder
{
public:
    /// Builds the registry of the format, too, when that has not been done yet.
    MessageDecoder();
    ~MessageDecoder();
    MessageDecoder(const MessageDecoder&) = delete;
    MessageDecoder& operator=(const MessageDecoder&) = delete;

    /// Decodes a block in place of the one before. Returns the bits consumed or the codec's
    /// negative code.
    int32_t decode(const Block& block);

    /// The message of the last block; null when it did not decode or its type has no message
    /// class. Valid until the next block is decoded.
    const Message* getMessage() const { return m_message; }

private:
    void keep(const Message* published);
    void drop();

    TQXDecoder m_decoder;
    const Message* m_message = nullptr;
};

} // namespace tqx
