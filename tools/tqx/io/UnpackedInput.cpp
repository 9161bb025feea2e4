#include "io/UnpackedInput.h"

#include "tqx/log/source/OpenSource.h"

namespace tqx::tool
{

namespace
{

/// An input that is owned elsewhere.
class Borrowed : public ByteSource
{
public:
    explicit Borrowed(Input& borrowed) : m_input(borrowed) {}

    size_t read(uint8_t* bytes, size_t capacity) override { return m_input.read(bytes, capacity); }
    uint64_t skip(uint64_t count) override { return m_input.skip(count); }
    bool isReady(std::chrono::milliseconds patience) override { return m_input.isReady(patience); }
    Place placeOf(uint64_t offset) const override { return m_input.placeOf(offset); }
    bool isInterrupted() const override { return m_input.isInterrupted(); }

private:
    Input& m_input;
};

} // namespace

// Not before the first read: the first bytes may take time to arrive.
ByteSource& UnpackedInput::getContent()
{
    if (!m_content)
        m_content = decompressed(std::make_unique<Borrowed>(m_input));
    return *m_content;
}

size_t UnpackedInput::read(uint8_t* bytes, size_t capacity)
{
    return getContent().read(bytes, capacity);
}

uint64_t UnpackedInput::skip(uint64_t count)
{
    return getContent().skip(count);
}

bool UnpackedInput::isReady(std::chrono::milliseconds patience)
{
    return m_content ? m_content->isReady(patience) : m_input.isReady(patience);
}

uint64_t UnpackedInput::takeProgress()
{
    const uint64_t added = m_input.getPosition() - m_shown;
    m_shown += added;
    return added;
}

} // namespace tqx::tool
