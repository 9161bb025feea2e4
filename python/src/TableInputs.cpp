#include "TableInputs.h"

#include "Interrupts.h"
#include "TQX_codec.h"
#include "korcg_load.h"
#include "tqx/log/DataError.h"
#include "tqx/log/source/Decompressor.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/source/OpenSource.h"

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
                         std::shared_ptr<TableCounts> counts)
    : m_inputs(std::move(inputs)), m_choice(std::move(choice)), m_counts(std::move(counts))
{
    TQX_init_context(&m_context);
}

bool ChosenInput::isWanted(const TableBlock& block)
{
    if ((m_choice.revisions >> block.getRevision() & 1) == 0)
        return false;
    ++m_counts->found;
    if (!m_choice.where)
        return true;
    m_context.weekCounter = block.week;
    m_context.lastTOW = 0; // the counter is that after the block
    return m_record.decode(&m_context, block.data, block.size) > 0 &&
           m_choice.where->accepts(m_record.get());
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
            fmt::format("{}: {}: {}", block.file, block.offset, TQX_errorName(code));
    }
}

WholeInput::WholeInput(std::shared_ptr<const LogFile> log, const TQX_TypeLayout& type,
                       const BlockChoice& choice)
    : m_log(std::move(log)), m_input(m_log->getIndex(), m_log->getContent(), type, queryOf(choice))
{
}

size_t WholeInput::read(TableBlock* blocks, size_t capacity)
{
    return m_input.read(blocks, capacity);
}

PartInput::PartInput(const std::string& path, const Partition& part, const TQX_TypeLayout& type,
                     const BlockChoice& choice)
    : m_name(path), m_begin(part.begin), m_number(type.blockNumber), m_time(part.timeBefore),
      m_from(choice.from), m_to(choice.to)
{
    TQX_init_context(&m_context);
    part.context.applyTo(m_context);
    m_file = std::make_unique<FileAccess>(path);
    uint8_t first[4];
    const size_t count = m_file->readAt(0, first, sizeof first);
    if (compressionOf(first, count) != Compression::None || !m_file->getBytes()) {
        if (part.begin != 0)
            throw SourceError(path + ": a compressed log has no parts");
        m_source = openSource(path);
    } else if (part.end > m_file->getSize() || part.begin > part.end) {
        throw SourceError(fmt::format("{}: {}: the log has shrunk since it was indexed", path,
                                      m_file->getSize()));
    } else {
        m_source = std::make_unique<MemorySource>(m_file->getBytes() + part.begin,
                                                  static_cast<size_t>(part.end - part.begin), path);
    }
    m_stream = std::make_unique<BlockStream>(*m_source);
}

size_t PartInput::read(TableBlock* blocks, size_t capacity)
{
    constexpr size_t endOfTow = 12;
    Block block = {};
    while (capacity != 0 && m_stream->next(block)) {
        if (block.size >= endOfTow && TQX_recordType(block.getNumber()) != 0)
            TQX_continuousTime(&m_context, korcg_load_u32(block.data + 8));
        if (const auto time = block.getTime())
            m_time = time;
        const bool isInTime =
            (!m_from || (m_time && *m_time >= *m_from)) && (!m_to || !m_time || *m_time < *m_to);
        if (block.getNumber() != m_number || !isInTime)
            continue;
        *blocks = {block.data, block.size, m_context.weekCounter, m_begin + block.offset, m_name};
        return 1;
    }
    return 0;
}

} // namespace tqx::python
