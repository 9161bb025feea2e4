#include "TqxSync.h"

#include <QMetaType>

#include <algorithm>
#include <limits>

namespace
{

// Queued connections look up argument types by the names that the signal gives them.
[[maybe_unused]] const int registered = qRegisterMetaType<uint32_t>("uint32_t");

} // namespace

TqxSync::TqxSync(QObject* parent) : QObject(parent), m_framer(this) {}

TqxSync::~TqxSync() = default;

void TqxSync::appendBytes(const QByteArray& bytes)
{
    m_framer.append(reinterpret_cast<const uint8_t*>(bytes.constData()),
                    static_cast<size_t>(bytes.size()));
}

bool TqxSync::hasBlock() const
{
    return m_framer.hasBlock();
}

QByteArray TqxSync::getBlockBytes()
{
    const tqx::BlockFramer::Block block = m_framer.block();
    QByteArray bytes(reinterpret_cast<const char*>(block.data), static_cast<int>(block.size));
    m_framer.takeBlock();
    return bytes;
}

int TqxSync::getNumberOfBytesLeft() const
{
    constexpr size_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(m_framer.bytesLeft(), most));
}

void TqxSync::flush()
{
    m_framer.flush();
}

void TqxSync::onChecksumFailed(uint64_t)
{
    Q_EMIT CRCError();
}

void TqxSync::onInvalidLength(uint64_t)
{
    Q_EMIT invalidLength();
}

void TqxSync::onBytesDropped(uint64_t, uint64_t count)
{
    while (count != 0) {
        const auto part =
            static_cast<uint32_t>(std::min<uint64_t>(count, std::numeric_limits<uint32_t>::max()));
        count -= part;
        Q_EMIT droppedBytes(part);
    }
}
