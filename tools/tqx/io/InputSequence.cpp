#include "io/InputSequence.h"

#include "io/Interrupt.h"
#include "io/ToolError.h"
#include "io/Words.h"

#include <algorithm>
#include <utility>

namespace tqx::tool
{

InputSequence::InputSequence(std::vector<std::string> inputs, bool isSilent)
    : m_paths(std::move(inputs)), m_progress(std::in_place, m_paths, !isSilent)
{
}

bool InputSequence::isInterrupted() const
{
    return interrupt::hasCome();
}

ByteSource::Place InputSequence::placeOf(uint64_t offset) const
{
    const auto after =
        std::upper_bound(m_parts.begin(), m_parts.end(), offset,
                         [](uint64_t wanted, const Part& part) { return wanted < part.start; });
    const Part& part = *std::prev(after);
    return {part.name, offset - part.start};
}

/// False when there are no more inputs.
bool InputSequence::openNext()
{
    if (m_opened == m_paths.size() || interrupt::hasCome())
        return false;
    try {
        m_input.emplace(m_paths[m_opened++]);
        m_progress->setName(m_input->getName());
        m_names.push_back(m_input->getName());
        m_parts.push_back({m_input->getName(), m_size});
    } catch (const SourceError& error) {
        fail(error);
    }
    return true;
}

/// Number of bytes read, 0 at the end of the current input.
size_t InputSequence::readInput(uint8_t* bytes, size_t capacity)
{
    try {
        return m_input->read(bytes, capacity);
    } catch (const SourceError& error) {
        fail(error);
        return 0;
    }
}

/// Flushes what has arrived when nothing follows at once, and from time to time in a steady stream.
void InputSequence::handOn()
{
    constexpr std::chrono::milliseconds patience(20);
    constexpr std::chrono::milliseconds longest(100);
    if (!m_beforeRead ||
        (m_input && m_input->isReady(patience) && Clock::now() - m_handedOn < longest))
        return;
    m_beforeRead();
    m_handedOn = Clock::now();
}

bool InputSequence::isReady(std::chrono::milliseconds patience)
{
    handOn();
    return !m_input || m_input->isReady(patience);
}

void InputSequence::keepHead(const uint8_t* bytes, size_t count)
{
    constexpr size_t mostInputs = 10;
    constexpr size_t mostBytes = 4096;
    if (!m_hasHead) {
        if (m_heads.size() == mostInputs)
            return;
        m_heads.push_back({m_input->getName(), {}});
        m_hasHead = true;
    }
    std::vector<uint8_t>& head = m_heads.back().bytes;
    head.insert(head.end(), bytes, bytes + std::min(count, mostBytes - head.size()));
}

void InputSequence::fail(const SourceError& error)
{
    if (m_reports)
        words::say(error.what());
    m_failed = true;
}

void InputSequence::passOver()
{
    m_names = m_paths;
    close();
}

void InputSequence::close()
{
    m_input.reset();
    m_opened = m_paths.size();
    m_progress.reset();
}

size_t InputSequence::read(uint8_t* bytes, size_t capacity)
{
    for (;;) {
        handOn();
        if (!m_input && !openNext()) {
            m_progress.reset();
            return 0;
        }
        if (!m_input)
            continue;
        const size_t count = readInput(bytes, capacity);
        if (count != 0) {
            m_size += count;
            m_progress->add(m_input->takeProgress());
            keepHead(bytes, count);
            if (m_copy)
                m_copy(bytes, count);
            return count;
        }
        m_input.reset();
        m_hasHead = false;
    }
}

} // namespace tqx::tool
