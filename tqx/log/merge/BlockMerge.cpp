#include "tqx/log/merge/BlockMerge.h"

#include "tqx/log/merge/WrittenBlocks.h"

#include <deque>
#include <queue>
#include <utility>

namespace tqx
{

namespace
{

constexpr GnssMillis longestDisorder = 60000;  // milliseconds
constexpr size_t mostHeld = size_t{16} << 20U; // bytes

/// One stream, block by block, with the time that each is sorted by.
class Input
{
public:
    explicit Input(BlockStream& stream) : m_stream(&stream) {}

    /// Advances to the next block; false at the end.
    bool advance();

    const Block& getBlock() const { return m_held.empty() ? m_block : m_held.front().block; }
    GnssMillis getPlace() const { return m_held.empty() ? m_place : m_held.front().place; }

    /// By how much the time runs back with the block, 0 for not at all.
    GnssMillis getStepBack() const { return m_held.empty() ? m_stepBack : 0; }

private:
    struct Held {
        std::vector<uint8_t> bytes;
        Block block;
        GnssMillis place;
    };

    void read();
    void readAfterJump(std::optional<GnssMillis> time);
    bool isDoubtful(const std::optional<GnssMillis>& time) const;
    void hold();

    BlockStream* m_stream;
    std::deque<Held> m_held; ///< blocks before m_block
    size_t m_heldBytes = 0;
    Block m_block = {};
    bool m_hasBlock = true; ///< false from the end of the stream on
    bool m_hasTime = false; ///< whether a block had one yet
    GnssMillis m_place = 0;
    GnssMillis m_stepBack = 0;
};

/// Keeps the block for later.
void Input::hold()
{
    Held& copy = m_held.emplace_back();
    copy.bytes.assign(m_block.data, m_block.data + m_block.size);
    copy.block = m_block;
    copy.block.data = copy.bytes.data();
    m_heldBytes += copy.bytes.size() + sizeof(Held);
}

/// Whether what follows must show where the block belongs: before any time, and after a jump.
bool Input::isDoubtful(const std::optional<GnssMillis>& time) const
{
    return !m_hasTime || (time && *time > m_place + longestDisorder);
}

/// Reads up to the next block with a time. A time that is far ahead of those on both sides, or at
/// the start of the one after it, is taken to be wrong, and its block stays where it is.
void Input::readAfterJump(std::optional<GnssMillis> time)
{
    const bool hadTime = m_hasTime;
    const size_t first = m_held.size();
    GnssMillis after = 0; // 0 until there is a second time
    do {
        hold();
        m_hasBlock = m_stream->next(m_block);
        const std::optional<GnssMillis> next = m_hasBlock ? m_block.getTime() : std::nullopt;
        if (time) {
            after = next.value_or(0);
        } else {
            time = next;
        }
    } while (m_hasBlock && after == 0 && m_heldBytes < mostHeld);
    if (time && after != 0 && after + longestDisorder < *time &&
        (!hadTime || after + longestDisorder >= m_place))
        time = hadTime ? m_place : after;
    if (time)
        m_place = *time;
    m_hasTime = m_hasTime || time;
    for (size_t i = first; i < m_held.size(); ++i)
        m_held[i].place = m_place;
}

void Input::read()
{
    m_heldBytes = 0;
    m_hasBlock = m_stream->next(m_block);
    std::optional<GnssMillis> time = m_hasBlock ? m_block.getTime() : std::nullopt;
    while (m_hasBlock && isDoubtful(time) && m_heldBytes < mostHeld) {
        readAfterJump(time);
        time = m_hasBlock ? m_block.getTime() : std::nullopt;
    }
    if (!time)
        return;
    if (m_hasTime && *time + longestDisorder < m_place) {
        m_stepBack = m_place - *time;
        m_place = *time;
    } else if (*time > m_place) {
        m_place = *time;
    }
    m_hasTime = true;
}

bool Input::advance()
{
    if (!m_held.empty()) {
        m_held.pop_front();
    } else if (m_hasBlock) {
        m_stepBack = 0;
        read();
    }
    return m_hasBlock || !m_held.empty();
}

} // namespace

class BlockMerge::Core
{
public:
    explicit Core(const std::vector<BlockStream*>& streams);

    bool next(Block& block);

    std::function<void(const StepBack&)> onStepBack;
    size_t current = 0;
    uint64_t duplicates = 0;

private:
    using Place = std::pair<GnssMillis, size_t>; ///< and the input

    void advance(size_t input);

    std::vector<Input> m_inputs;
    std::priority_queue<Place, std::vector<Place>, std::greater<Place>> m_waiting;
    WrittenBlocks m_written{longestDisorder};
    bool m_hasBegun = false;
    bool m_hasCurrent = false;
};

BlockMerge::Core::Core(const std::vector<BlockStream*>& streams)
{
    for (BlockStream* stream : streams)
        m_inputs.emplace_back(*stream);
}

void BlockMerge::Core::advance(size_t input)
{
    Input& from = m_inputs[input];
    if (!from.advance())
        return;
    if (onStepBack && from.getStepBack() != 0)
        onStepBack({input, from.getBlock(), from.getStepBack()});
    m_waiting.emplace(from.getPlace(), input);
}

bool BlockMerge::Core::next(Block& block)
{
    for (size_t input = 0; !m_hasBegun && input < m_inputs.size(); ++input)
        advance(input);
    m_hasBegun = true;
    for (;;) {
        // The bytes of the last block end with this.
        if (m_hasCurrent)
            advance(current);
        m_hasCurrent = !m_waiting.empty();
        if (!m_hasCurrent)
            return false;
        current = m_waiting.top().second;
        m_waiting.pop();
        block = m_inputs[current].getBlock();
        if (m_written.admits(block, m_inputs[current].getPlace(), current))
            return true;
        ++duplicates;
    }
}

BlockMerge::BlockMerge(const std::vector<BlockStream*>& inputs)
    : m_core(std::make_unique<Core>(inputs))
{
}

BlockMerge::~BlockMerge() = default;

void BlockMerge::setStepBackListener(std::function<void(const StepBack&)> listener)
{
    m_core->onStepBack = std::move(listener);
}

bool BlockMerge::next(Block& block)
{
    return m_core->next(block);
}

size_t BlockMerge::getInput() const
{
    return m_core->current;
}

uint64_t BlockMerge::getDuplicates() const
{
    return m_core->duplicates;
}

} // namespace tqx
