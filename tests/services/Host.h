#pragma once

#include "TQXDecoder.h"
#include "TQXSynchronizer.h"

#include "Message.h"

#include <cstdint>
#include <functional>

struct Counts {
    uint64_t appended = 0;  ///< bytes, as are the next two
    uint64_t delivered = 0; ///< in blocks
    uint64_t dropped = 0;
    uint64_t damages = 0; ///< bad checksums and lengths
    uint64_t blocks = 0;
    uint64_t messages = 0;
    uint64_t events = 0; ///< of the decoder
};

/// What a program does with a stream: appends pieces, fetches blocks, decodes them, and counts.
class Host : public Counts
{
public:
    Host()
    {
        QObject::connect(&synchronizer, &AbstractSync::newEvent,
                         [this](const MessageApiEvent& event) {
                             // "TQX: 12 bytes dropped", else what was wrong with them.
                             const QString count = event.getText().section(QLatin1Char(' '), 1, 1);
                             dropped += count.toULongLong();
                             damages += count.isEmpty() ? 1 : 0;
                         });
        QObject::connect(&decoder, &MessageSource::newEvent, [this] { ++events; });
        QObject::connect(&decoder, &MessageSource::newMessage, [this](const Message* message) {
            ++messages;
            if (onMessage) {
                onMessage(message);
            }
        });
    }

    void append(QByteArray& piece)
    {
        appended += static_cast<uint64_t>(piece.size());
        synchronizer.appendBytes(piece);
        decodeBlocks();
    }

    /// The whole of `stream` in pieces.
    void append(const QByteArray& stream, int piece)
    {
        for (int at = 0; at < stream.size(); at += piece) {
            QByteArray bytes = stream.mid(at, piece);
            append(bytes);
        }
    }

    void end()
    {
        synchronizer.flush();
        decodeBlocks();
    }

    bool accountsForEveryByte() const
    {
        return delivered + dropped + static_cast<uint64_t>(synchronizer.getNumberOfBytesLeft()) ==
               appended;
    }

    /// Starts counting again; bytes that wait in the synchroniser are not accounted for any more.
    void forget() { static_cast<Counts&>(*this) = {}; }

    TQXSynchronizer synchronizer;
    TQXDecoder decoder;
    std::function<void(const QByteArray&)> onBlock; ///< before the block is decoded
    std::function<void(const Message*)> onMessage;

private:
    void decodeBlocks()
    {
        while (synchronizer.hasBlock()) {
            const QByteArray block = synchronizer.getBlockBytes();
            delivered += static_cast<uint64_t>(block.size());
            ++blocks;
            if (onBlock) {
                onBlock(block);
            }
            decoder.decodeMessage(reinterpret_cast<const uint8_t*>(block.constData()),
                                  static_cast<uint32_t>(block.size()));
        }
    }
};
