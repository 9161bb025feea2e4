// Any bytes in any pieces through synchroniser and decoder: every byte is accounted for, what is
// found is what the plainest framing finds, and every block is published or its failure reported.

#include "FixedChecksums.h"
#include "Host.h"
#include "ReferenceFramer.h"
#include "TQX_Format.h"
#include "TQX_FormatInfo.h"
#include "TQX_Layout.h"

#include "FieldInfo.h"
#include "MessageInfo.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

namespace
{

void require(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// Numbers of the blocks that are decoded in silence.
std::set<unsigned> silentNumbers()
{
    std::set<unsigned> numbers;
    for (uint32_t type = 1; type <= Kor::MessageApi::TQX_lastRecordType; ++type) {
        const auto* layout = TQX_layout(type);
        if (layout != nullptr && !layout->hasMessage && layout->blockNumber != 0) {
            numbers.insert(layout->blockNumber);
        }
    }
    return numbers;
}

// Reads everything in a message and in those inside it.
void read(const Message* message)
{
    const auto& fields = message->getInfo()->getFieldInfos();
    message->getRawStringFor(QVector<bool>(fields.size(), true));
    for (const FieldInfo* field : fields) {
        field->getValueString(message);
    }
    for (const Message* child : message->getSubMessages()) {
        require(child->getParentMessage() == message);
        read(child);
    }
}

// One host for all streams, as the set-up of a decoder costs more than most of them: after the end
// of input nothing is left in it.
class CheckedHost
{
public:
    CheckedHost()
    {
        m_host.onBlock = [this](const QByteArray& bytes) { check(bytes); };
        m_host.onMessage = [this](const Message* message) { keep(message); };
    }

    void run(const Bytes& stream, size_t piece)
    {
        m_stream = stream;
        m_silentBlocks = 0;
        m_host.forget();
        m_expected = referenceFraming(m_stream, false);
        for (size_t at = 0; at < m_stream.size(); at += piece) {
            const size_t size = std::min(piece, m_stream.size() - at);
            QByteArray bytes(reinterpret_cast<const char*>(&m_stream[at]), static_cast<int>(size));
            m_host.append(bytes);
            require(m_host.accountsForEveryByte());
        }
        checkOutcome();
        m_expected = referenceFraming(m_stream, true);
        m_host.end();
        require(m_host.accountsForEveryByte());
        checkOutcome();
        keep(nullptr);
    }

private:
    void check(const QByteArray& bytes)
    {
        const size_t index = m_host.blocks - 1;
        require(index < m_expected.blocks.size());
        const Framing::Stretch& block = m_expected.blocks[index];
        require(static_cast<size_t>(bytes.size()) == block.size &&
                std::equal(bytes.begin(), bytes.end(),
                           reinterpret_cast<const char*>(&m_stream[block.offset])));
        static const std::set<unsigned> silent = silentNumbers();
        m_silentBlocks += silent.count(
            Kor::MessageApi::TQX_blockNumberOf(korcg_load_u16(&m_stream[block.offset + 4])));
    }

    // The message before this one lives until now.
    void keep(const Message* message)
    {
        if (message != nullptr) {
            message->addReference();
        }
        if (const Message* previous = std::exchange(m_kept, message)) {
            read(previous);
            previous->removeReference();
        }
    }

    void checkOutcome() const
    {
        require(m_host.blocks == m_expected.blocks.size());
        require(m_host.damages ==
                m_expected.checksumErrors.size() + m_expected.invalidLengths.size());
        require(m_host.synchronizer.getNumberOfBytesLeft() == static_cast<int>(m_expected.left));
        const uint64_t reported = m_host.messages + m_host.events;
        require(reported <= m_host.blocks && m_host.blocks <= reported + m_silentBlocks);
    }

    Bytes m_stream;
    Framing m_expected;
    Host m_host;
    const Message* m_kept = nullptr;
    uint64_t m_silentBlocks = 0;
};

} // namespace

// The first byte chooses the size of the pieces.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    TQX_FormatInfo::getInstance();
    static CheckedHost host;
    if (size > 0) {
        host.run(withChecksums(data + 1, size - 1), data[0] + size_t{1});
    }
    return 0;
}
