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

/// Wire heads that are collected before their columns are read.
constexpr size_t mostStaged = 256;
/// Blocks ahead that are fetched into the cache.
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
    constexpr uint32_t unset = 0xffffffff;
    return tow == unset ? unset : static_cast<uint32_t>(week * millisPerWeek) + tow;
}

} // namespace

class TableBuilder::Rows
{
public:
    Rows(std::shared_ptr<const TableSchema> ofTable, Refuse whenRefused);

    size_t append(const TableBlock* blocks, size_t size);
    size_t getCount() const { return count + staged; }
    bool isFull() const
    {
        return getCount() >= options.batchRows || (bytes >= options.batchBytes && getCount() != 0);
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

    std::shared_ptr<const TableSchema> schema;
    const TablePlan& plan;
    const TableOptions& options;
    Refuse refuse;
    std::vector<std::string> files;
    FieldColumns aboutBlock;
    std::vector<FieldColumns> levels;

    size_t count = 0;
    size_t bytes = 0;

    // Wire heads of one revision.
    std::vector<uint8_t> heads;
    std::vector<RowFacts> headFacts;
    size_t staged = 0;
    unsigned revision = 0;

    TQX_OwnedRecord record;
    std::vector<const uint8_t*> chain; ///< a record of each level
    JoinedRun joined;                  ///< of the last level
};

TableBuilder::Rows::Rows(std::shared_ptr<const TableSchema> ofTable, Refuse whenRefused)
    : schema(std::move(ofTable)), plan(schema->getPlan()), options(schema->getOptions()),
      refuse(std::move(whenRefused)), aboutBlock(plan.aboutBlock, files),
      heads(plan.wire.stride * mostStaged), headFacts(mostStaged), chain(plan.levels.size())
{
    for (const TablePlan::Level& level : plan.levels)
        levels.emplace_back(level.columns, files);
    reserve();
}

void TableBuilder::Rows::reserve()
{
    aboutBlock.reserve(options.batchRows);
    for (FieldColumns& level : levels)
        level.reserve(options.batchRows);
}

uint32_t TableBuilder::Rows::numberOf(std::string_view file)
{
    if (files.empty() || files.back() != file)
        files.emplace_back(file);
    return static_cast<uint32_t>(files.size() - 1);
}

RowFacts TableBuilder::Rows::factsOf(const TableBlock& block)
{
    RowFacts facts;
    const auto time = gnssMillis(korcg_load_u32(block.data + 8), korcg_load_u16(block.data + 12));
    if (time) {
        facts.time = nanosSince1970(*time);
        if (options.hasUtc)
            facts.utc = nanosSince1970(utcMillis(*time));
    }
    facts.offset = block.offset;
    if (options.hasFile)
        facts.file = numberOf(block.file);
    return facts;
}

size_t TableBuilder::Rows::append(const TableBlock* blocks, size_t size)
{
    const uint16_t number = schema->getType().blockNumber;
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
    bytes += block.size;
    if (plan.wire.isUsable && block.size >= plan.wire.needed[ofBlock])
        return stage(block, ofBlock);
    flush();
    decode(block);
}

void TableBuilder::Rows::stage(const TableBlock& block, unsigned ofBlock)
{
    if (staged == mostStaged || ofBlock != revision)
        flush();
    revision = ofBlock;
    uint8_t* head = heads.data() + staged * plan.wire.stride;
    std::memcpy(head, block.data, std::min<size_t>(block.size, plan.wire.size));
    const uint32_t towc = continuousTow(korcg_load_u32(block.data + 8), block.week);
    std::memcpy(head + plan.wire.towcOffset, &towc, sizeof towc);
    headFacts[staged] = factsOf(block);
    ++staged;
}

void TableBuilder::Rows::flush()
{
    if (staged == 0)
        return;
    const void* facts = headFacts.data();
    aboutBlock.append(
        {static_cast<const uint8_t*>(facts), sizeof(RowFacts), staged, revision, false});
    levels.front().append({heads.data(), plan.wire.stride, staged, revision, true});
    count += staged;
    staged = 0;
}

void TableBuilder::Rows::decode(const TableBlock& block)
{
    const int32_t result = record.decode(nullptr, block.data, block.size);
    if (result <= 0) {
        if (refuse)
            refuse(block, result);
        return;
    }
    auto& header = *static_cast<TQX_MainHeader_s*>(record.get());
    header.TOWc = continuousTow(header.TOW, block.week);
    const RowFacts facts = factsOf(block);
    chain.front() = static_cast<const uint8_t*>(record.get());
    revision = header.Revision;
    const size_t before = count;
    if (chain.size() > 1) {
        appendEntries(1);
        joined.end([&] { levels.back().append(joined.run); });
    } else {
        ++count;
    }
    const void* about = &facts;
    const size_t added = count - before;
    aboutBlock.append({static_cast<const uint8_t*>(about), 0, added, revision, false});
    levels.front().append({chain.front(), 0, added, revision, false});
}

/// Adds the rows of the records of level `depth` in the one at hand of the level above, as far as
/// they come from that level on.
void TableBuilder::Rows::appendEntries(size_t depth)
{
    const TQX_TypeLayout& owner = *plan.levels[depth - 1].type;
    const TQX_FieldLayout& field = *plan.levels[depth].field;
    const uint8_t* above = chain[depth - 1];
    if (!TQX_isPresent(owner, field, above))
        return;
    const size_t entries = TQX_elementCount(owner, field, above);
    if (entries == 0)
        return;
    const auto* first = static_cast<const uint8_t*>(TQX_element(field, above));
    const Run run = {first, TQX_elementSize(field), entries, revision, false};
    if (depth + 1 < plan.levels.size()) {
        for (size_t i = 0; i < entries; ++i) {
            chain[depth] = run.at(i);
            appendEntries(depth + 1);
        }
        return;
    }
    for (size_t level = 1; level < depth; ++level)
        levels[level].append({chain[level], 0, entries, revision, false});
    joined.add(run, [&] { levels.back().append(joined.run); });
    count += entries;
}

OwnedArrow<ArrowArray> TableBuilder::Rows::finish()
{
    flush();
    ArrayParts parts;
    parts.validity.appendValid(count);
    aboutBlock.finish(parts.children);
    for (FieldColumns& level : levels)
        level.finish(parts.children);
    OwnedArrow<ArrowArray> batch = exportArray(std::move(parts));
    count = 0;
    bytes = 0;
    reserve();
    return batch;
}

TableBuilder::TableBuilder(std::shared_ptr<const TableSchema> schema, Refuse refuse)
    : rows(std::make_unique<Rows>(std::move(schema), std::move(refuse)))
{
}

TableBuilder::~TableBuilder() = default;

size_t TableBuilder::append(const TableBlock* blocks, size_t count)
{
    return rows->append(blocks, count);
}

size_t TableBuilder::getRows() const
{
    return rows->getCount();
}

bool TableBuilder::isFull() const
{
    return rows->isFull();
}

void TableBuilder::finish(ArrowArray& out)
{
    out = rows->finish().take();
}

} // namespace tqx
