#include "io/InputSequence.h"

#include "io/Interrupt.h"
#include "io/ToolError.h"
#include "io/Words.h"

#include <algorithm>
#include <utility>

namespace tqx::tool
{

InputSequence::InputSequence(std::vector<std::string> inputs, bool isSilent)
    : paths(std::move(inputs)), progress(std::in_place, paths, !isSilent)
{
}

bool InputSequence::isInterrupted() const
{
    return interrupt::hasCome();
}

ByteSource::Place InputSequence::placeOf(uint64_t offset) const
{
    const auto after =
        std::upper_bound(parts.begin(), parts.end(), offset,
                         [](uint64_t wanted, const Part& part) { return wanted < part.start; });
    const Part& part = *std::prev(after);
    return {part.name, offset - part.start};
}

/// False when there are no more inputs.
bool InputSequence::openNext()
{
    if (opened == paths.size() || interrupt::hasCome())
        return false;
    try {
        input.emplace(paths[opened++]);
        progress->setName(input->getName());
        names.push_back(input->getName());
        parts.push_back({input->getName(), size});
    } catch (const SourceError& error) {
        words::say(error.what());
        failed = true;
    }
    return true;
}

/// Bytes read, 0 at the end of the input at hand.
size_t InputSequence::readInput(uint8_t* bytes, size_t capacity)
{
    try {
        return input->read(bytes, capacity);
    } catch (const SourceError& error) {
        words::say(error.what());
        failed = true;
        return 0;
    }
}

/// What has come is handed on when nothing follows at once, and in a steady stream now and then.
void InputSequence::handOn()
{
    constexpr std::chrono::milliseconds patience(20);
    constexpr std::chrono::milliseconds longest(100);
    if (!beforeRead || (input && input->isReady(patience) && Clock::now() - handedOn < longest))
        return;
    beforeRead();
    handedOn = Clock::now();
}

bool InputSequence::isReady(std::chrono::milliseconds patience)
{
    handOn();
    return !input || input->isReady(patience);
}

void InputSequence::keepHead(const uint8_t* bytes, size_t count)
{
    constexpr size_t mostInputs = 10;
    constexpr size_t mostBytes = 4096;
    if (!hasHead) {
        if (heads.size() == mostInputs)
            return;
        heads.push_back({input->getName(), {}});
        hasHead = true;
    }
    std::vector<uint8_t>& head = heads.back().bytes;
    head.insert(head.end(), bytes, bytes + std::min(count, mostBytes - head.size()));
}

void InputSequence::close()
{
    input.reset();
    opened = paths.size();
    progress.reset();
}

size_t InputSequence::read(uint8_t* bytes, size_t capacity)
{
    for (;;) {
        handOn();
        if (!input && !openNext()) {
            progress.reset();
            return 0;
        }
        if (!input)
            continue;
        const size_t count = readInput(bytes, capacity);
        if (count != 0) {
            size += count;
            progress->add(input->takeProgress());
            keepHead(bytes, count);
            if (m_copy)
                m_copy(bytes, count);
            return count;
        }
        input.reset();
        hasHead = false;
    }
}

} // namespace tqx::tool
