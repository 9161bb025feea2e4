#include "io/UnpackedInput.h"

#include "tqx/log/source/OpenSource.h"

namespace tqx::tool
{

namespace
{

/// An input that belongs to somebody else.
class Borrowed : public ByteSource
{
public:
    explicit Borrowed(Input& borrowed) : input(borrowed) {}

    size_t read(uint8_t* bytes, size_t capacity) override { return input.read(bytes, capacity); }
    uint64_t skip(uint64_t count) override { return input.skip(count); }
    bool isReady(std::chrono::milliseconds patience) override { return input.isReady(patience); }
    Place placeOf(uint64_t offset) const override { return input.placeOf(offset); }
    bool isInterrupted() const override { return input.isInterrupted(); }

private:
    Input& input;
};

} // namespace

// Not before something is read: the first bytes may have to be waited for.
ByteSource& UnpackedInput::getContent()
{
    if (!content)
        content = decompressed(std::make_unique<Borrowed>(input));
    return *content;
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
    return content ? content->isReady(patience) : input.isReady(patience);
}

uint64_t UnpackedInput::takeProgress()
{
    const uint64_t added = input.getPosition() - shown;
    shown += added;
    return added;
}

} // namespace tqx::tool
