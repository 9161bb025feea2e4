#include "tqx/log/table/TableBuilder.h"

#include "TQX_OwnedRecord.h"
#include "TQX_RecordAccess.h"
#include "korcg_load.h"
#include "tqx/log/table/Column.h"
#include "tqx/log/table/TablePlan.h"
#include "tqx/log/time/GnssTime.h"
#include "tqx/log/time/LeapSeconds.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace tqx
{

using namespace Kor::MessageApi;

namespace
{

/// Number of wire heads collected before their columns are read.
constexpr size_t mostStaged = 256;
/// How many blocks ahead to prefetch into the cache.
constexpr size_t ahead = 16;

void prefetch(const uint8_t* bytes)
{
#if defined(__GNUC__)
    constexpr size_t line = 64;
    __builtin_prefetch(bytes);
    __builtin_prefetch(bytes + line);
#else
    static_cast<void>(bytes);
#endif
}

/// Nanoseconds since 1970 of milliseconds since 1980-01-06, if they can be said.
int64_t nanosSince1970(uint64_t millis)
{
    constexpr uint64_t epoch = 315964800000;
    constexpr uint64_t nanosPerMilli = 1000000;
    constexpr uint64_t last = INT64_MAX / nanosPerMilli;
    millis += epoch;
    return millis > last ? RowFacts::noTime : static_cast<int64_t>(millis * nanosPerMilli);
}

uint32_t continuousTow(uint32_t tow, unsigned week)
{
    return tow == TQX_noTOW ? TQX_noTOW : static_cast<uint32_t>(week * millisPerWeek) + tow;
}

} // namespace

class TableBuilder::Rows
{
public:
    Rows(std::shared_ptr<const TableSchema> ofTable, Refuse whenRefused);

    size_t append(const TableBlock* blocks, size_t size);
    size_t getCount() const { return m_count + m_staged; }
    bool isFull() const
    {
        return getCount() >= m_options.batchRows ||
               (m_bytes >= m_options.batchBytes && getCount() != 0);
    }
    OwnedArrow<ArrowArray> finish();

private:
    void append(const TableBlock& block);
    RowFacts factsOf(const TableBlock& block);
    uint32_t numberOf(std::string_view file);
    void stage(const TableBlock& block, unsigned revision);
    void flush();
    void decode(const TableBlock& block);
    void appendEntries(size_t depth);
    void reserve();

    std::shared_ptr<const TableSchema> m_schema;
    const TablePlan& m_plan;
    const TableOptions& m_options;
    Refuse m_refuse;
    std::vector<std::string> m_files;
    FieldColumns m_aboutBlock;
    std::vector<FieldColumns> m_levels;

    size_t m_count = 0;
    size_t m_bytes = 0;

    // Wire heads of one revision.
    std::vector<uint8_t> m_heads;
    std::vector<RowFacts> m_headFacts;
    size_t m_staged = 0;
    unsigned m_revision = 0;

    TQX_OwnedRecord m_record;
    std::vector<const uint8_t*> m_chain; ///< a record of each level
    JoinedRun m_joined;                  ///< of the last level
};

TableBuilder::Rows::Rows(std::shared_ptr<const TableSchema> ofTable, Refuse whenRefused)
    : m_schema(std::move(ofTable)), m_plan(m_schema->getPlan()), m_options(m_schema->getOptions()),
      m_refuse(std::move(whenRefused)), m_aboutBlock(m_plan.aboutBlock, m_files),
      m_heads(m_plan.wire.stride * mostStaged), m_headFacts(mostStaged),
      m_chain(m_plan.levels.size())
{
    for (const TablePlan::Level& level : m_plan.levels)
        m_levels.emplace_back(level.columns, m_files);
    reserve();
}

void TableBuilder::Rows::reserve()
{
    m_aboutBlock.reserve(m_options.batchRows);
    for (FieldColumns& level : m_levels)
        level.reserve(m_options.batchRows);
}

uint32_t TableBuilder::Rows::numberOf(std::string_view file)
{
    if (m_files.empty() || m_files.back() != file)
        m_files.emplace_back(file);
    return static_cast<uint32_t>(m_files.size() - 1);
}

RowFacts TableBuilder::Rows::factsOf(const TableBlock& block)
{
    RowFacts facts;
    const auto time = gnssMillis(korcg_load_u32(block.data + 8), korcg_load_u16(block.data + 12));
    if (time) {
        facts.time = nanosSince1970(*time);
        if (m_options.hasUtc)
            facts.utc = nanosSince1970(utcMillis(*time));
    }
    facts.offset = block.offset;
    if (m_options.hasFile)
        facts.file = numberOf(block.file);
    return facts;
}

size_t TableBuilder::Rows::append(const TableBlock* blocks, size_t size)
{
    const uint16_t number = m_schema->getType().blockNumber;
    for (size_t i = 0; i < size; ++i) {
        if (isFull())
            return i;
        if (i + ahead < size)
            prefetch(blocks[i + ahead].data);
        if (blocks[i].getNumber() == number)
            append(blocks[i]);
    }
    return size;
}

void TableBuilder::Rows::append(const TableBlock& block)
{
    const unsigned ofBlock = block.getRevision();
    m_bytes += block.size;
    if (m_plan.wire.isUsable && block.size >= m_plan.wire.needed[ofBlock])
        return stage(block, ofBlock);
    flush();
    decode(block);
}

void TableBuilder::Rows::stage(const TableBlock& block, unsigned ofBlock)
{
    if (m_staged == mostStaged || ofBlock != m_revision)
        flush();
    m_revision = ofBlock;
    uint8_t* head = m_heads.data() + m_staged * m_plan.wire.stride;
    std::memcpy(head, block.data, std::min<size_t>(block.size, m_plan.wire.size));
    const uint32_t towc = continuousTow(korcg_load_u32(block.data + 8), block.week);
    std::memcpy(head + m_plan.wire.towcOffset, &towc, sizeof towc);
    m_headFacts[m_staged] = factsOf(block);
    ++m_staged;
}

void TableBuilder::Rows::flush()
{
    if (m_staged == 0)
        return;
    const void* facts = m_headFacts.data();
    m_aboutBlock.append(
        {static_cast<const uint8_t*>(facts), sizeof(RowFacts), m_staged, m_revision, false});
    m_levels.front().append({m_heads.data(), m_plan.wire.stride, m_staged, m_revision, true});
    m_count += m_staged;
    m_staged = 0;
}

void TableBuilder::Rows::decode(const TableBlock& block)
{
    const TQX_TypeLayout& type = m_schema->getType();
    const int32_t result = type.described ? m_record.decode(type, nullptr, block.data, block.size)
                                          : m_record.decode(nullptr, block.data, block.size);
    if (result <= 0) {
        if (m_refuse)
            m_refuse(block, result);
        return;
    }
    auto& header = *static_cast<TQX_MainHeader_s*>(m_record.get());
    header.TOWc = continuousTow(header.TOW, block.week);
    const RowFacts facts = factsOf(block);
    m_chain.front() = static_cast<const uint8_t*>(m_record.get());
    m_revision = header.Revision;
    const size_t before = m_count;
    if (m_chain.size() > 1) {
        appendEntries(1);
        m_joined.end([&] { m_levels.back().append(m_joined.run); });
    } else {
        ++m_count;
    }
    const void* about = &facts;
    const size_t added = m_count - before;
    m_aboutBlock.append({static_cast<const uint8_t*>(about), 0, added, m_revision, false});
    m_levels.front().append({m_chain.front(), 0, added, m_revision, false});
}

/// Adds the rows of the records of level `depth` in the current record of the level above, as far
/// as the rows come from that level on.
void TableBuilder::Rows::appendEntries(size_t depth)
{
    const TQX_TypeLayout& owner = *m_plan.levels[depth - 1].type;
    const TQX_FieldLayout& field = *m_plan.levels[depth].field;
    const uint8_t* above = m_chain[depth - 1];
    if (!TQX_isPresent(owner, field, above))
        return;
    const size_t entries = TQX_elementCount(owner, field, above);
    if (entries == 0)
        return;
    const auto* first = static_cast<const uint8_t*>(TQX_element(field, above));
    const Run run = {first, TQX_elementSize(field), entries, m_revision, false};
    if (depth + 1 < m_plan.levels.size()) {
        for (size_t i = 0; i < entries; ++i) {
            m_chain[depth] = run.at(i);
            appendEntries(depth + 1);
        }
        return;
    }
    for (size_t level = 1; level < depth; ++level)
        m_levels[level].append({m_chain[level], 0, entries, m_revision, false});
    m_joined.add(run, [&] { m_levels.back().append(m_joined.run); });
    m_count += entries;
}

OwnedArrow<ArrowArray> TableBuilder::Rows::finish()
{
    flush();
    ArrayParts parts;
    parts.validity.appendValid(m_count);
    m_aboutBlock.finish(parts.children);
    for (FieldColumns& level : m_levels)
        level.finish(parts.children);
    OwnedArrow<ArrowArray> batch = exportArray(std::move(parts));
    m_count = 0;
    m_bytes = 0;
    reserve();
    return batch;
}

TableBuilder::TableBuilder(std::shared_ptr<const TableSchema> schema, Refuse refuse)
    : m_rows(std::make_unique<Rows>(std::move(schema), std::move(refuse)))
{
}

TableBuilder::~TableBuilder() = default;

size_t TableBuilder::append(const TableBlock* blocks, size_t count)
{
    return m_rows->append(blocks, count);
}

size_t TableBuilder::getRows() const
{
    return m_rows->getCount();
}

bool TableBuilder::isFull() const
{
    return m_rows->isFull();
}

void TableBuilder::finish(ArrowArray& out)
{
    out = m_rows->finish().take();
}

} // namespace tqx
