#include "TableInputs.h"

#include "Interrupts.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tqx::python
{

using namespace Kor::MessageApi;

namespace
{

BlockQuery queryOf(const BlockChoice& choice)
{
    BlockQuery query;
    query.from = choice.from;
    query.to = choice.to;
    return query;
}

} // namespace

ChosenInput::ChosenInput(std::vector<std::unique_ptr<TableInput>> inputs, BlockChoice choice,
                         const Schema& schema, std::shared_ptr<TableCounts> counts)
    : m_inputs(std::move(inputs)), m_choice(std::move(choice)), m_counts(std::move(counts)),
      m_schema(schema), m_decoder(schema)
{
}

bool ChosenInput::isWanted(const TableBlock& block)
{
    if ((m_choice.revisions >> block.getRevision() & 1) == 0)
        return false;
    ++m_counts->found;
    if (!m_choice.where)
        return true;
    // The counter is that after the block.
    return m_decoder.decode({block.data, block.size, block.offset}, {block.week, 0}) > 0 &&
           m_choice.where->accepts(m_decoder.getRecord());
}

size_t ChosenInput::read(TableBlock* blocks, size_t capacity)
{
    constexpr uint64_t blocksPerCheck = 4096;
    while (m_current < m_inputs.size()) {
        const size_t count = m_inputs[m_current]->read(blocks, capacity);
        if (count == 0) {
            m_inputs[m_current++].reset();
            continue;
        }
        m_sinceCheck += count;
        if (m_sinceCheck >= blocksPerCheck) {
            m_sinceCheck = 0;
            checkInterrupt();
        }
        const auto end = std::remove_if(
            blocks, blocks + count, [this](const TableBlock& block) { return !isWanted(block); });
        const auto kept = static_cast<size_t>(end - blocks);
        m_counts->selected += kept;
        if (kept != 0)
            return kept;
    }
    return 0;
}

void ChosenInput::refuse(const TableBlock& block, int32_t code)
{
    if (m_counts->refused++ == 0) {
        m_counts->firstRefused =
            fmt::format("{}: {}: {}", block.file, block.offset, m_schema.getErrorName(code));
    }
}

WholeInput::WholeInput(std::shared_ptr<const LogFile> log, const TQX_TypeLayout& type,
                       const BlockChoice& choice)
    : m_log(std::move(log)), m_input(m_log->getIndex(), m_log->getContent(), type, queryOf(choice))
{
}

size_t WholeInput::read(TableBlock* blocks, size_t capacity)
{
    const size_t count = m_input.read(blocks, capacity);
    for (size_t i = 0; i < count; ++i) {
        const ByteSource::Place place = m_log->placeOf(blocks[i].offset);
        blocks[i].offset = place.offset;
        blocks[i].file = place.file;
        blocks[i].week = static_cast<uint8_t>(blocks[i].week + m_log->getWeeksBefore());
    }
    return count;
}

PartInput::PartInput(const std::vector<std::string>& paths, const Partition& part,
                     const Schema& schema, const TQX_TypeLayout& type, const BlockChoice& choice)
    : m_stream(paths, part, schema), m_number(type.blockNumber), m_time(part.timeBefore),
      m_from(choice.from), m_to(choice.to)
{
}

size_t PartInput::read(TableBlock* blocks, size_t capacity)
{
    Block block = {};
    while (capacity != 0 && m_stream.next(block)) {
        if (const auto time = block.getTime())
            m_time = time;
        const bool isInTime =
            (!m_from || (m_time && *m_time >= *m_from)) && (!m_to || !m_time || *m_time < *m_to);
        if (block.getNumber() != m_number || !isInTime)
            continue;
        *blocks = {block.data, block.size, m_stream.getContext().weekCounter, block.offset,
                   m_stream.getName()};
        return 1;
    }
    return 0;
}

} // namespace tqx::python
