#include "LogFile.h"

#include "Interrupts.h"
#include "tqx/log/DataError.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/index/IndexedLog.h"
#include "tqx/log/index/SavedIndex.h"
#include "tqx/log/source/CompressedAccess.h"
#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/source/FileSource.h"
#include "tqx/log/source/JoinedAccess.h"
#include "tqx/log/source/JoinedSource.h"
#include "tqx/log/source/MemorySource.h"
#include "tqx/log/source/OpenSource.h"
#include "tqx/log/write/ProductFile.h"

#include <algorithm>
#include <utility>

namespace tqx::python
{

namespace
{

/// The beginning of a log, as if it ended there.
class Beginning : public RandomAccess
{
public:
    Beginning(const RandomAccess& all, uint64_t size) : m_all(all), m_size(size) {}

    const std::string& getName() const override { return m_all.getName(); }
    uint64_t getSize() const override { return m_size; }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override
    {
        const uint64_t left = m_size - std::min(offset, m_size);
        return m_all.readAt(offset, bytes, static_cast<size_t>(std::min<uint64_t>(count, left)));
    }
    const uint8_t* getBytes() const override { return m_all.getBytes(); }

private:
    const RandomAccess& m_all;
    uint64_t m_size;
};

/// A source that can be interrupted and reports its progress.
class WatchedSource : public ByteSource
{
public:
    WatchedSource(ByteSource& all, const IndexProgress& progress) : m_all(all), m_progress(progress)
    {
    }

    size_t read(uint8_t* bytes, size_t capacity) override
    {
        constexpr uint64_t step = 16 << 20;
        const size_t count = m_all.read(bytes, capacity);
        m_done += count;
        if (m_done - m_reported >= step) {
            m_reported = m_done;
            checkInterrupt();
            if (m_progress)
                m_progress(m_done);
        }
        return count;
    }
    Place placeOf(uint64_t offset) const override { return m_all.placeOf(offset); }

private:
    ByteSource& m_all;
    const IndexProgress& m_progress;
    uint64_t m_done = 0;
    uint64_t m_reported = 0;
};

/// Nothing where the index has no time.
std::optional<GnssMillis> known(GnssMillis time)
{
    return time == noMillis ? std::nullopt : std::optional(time);
}

void include(Partition& part, const PageRow& row)
{
    part.blocks += row.blocks;
    if (row.minTime != noMillis)
        part.first = std::min(part.first.value_or(row.minTime), row.minTime);
    if (row.maxTime != noMillis)
        part.last = std::max(part.last.value_or(row.maxTime), row.maxTime);
}

} // namespace

LogFile::LogFile(std::string path, const Schema& schema)
    : m_name(std::move(path)), m_isFile(true), m_packed(std::make_unique<FileAccess>(m_name)),
      m_schema(schema)
{
    uint8_t first[4];
    const size_t count = m_packed->readAt(0, first, sizeof first);
    m_compression = compressionOf(first, count);
}

LogFile::LogFile(std::vector<uint8_t> bytes, std::string name, const Schema& schema)
    : m_name(std::move(name)), m_isFile(false), m_schema(schema)
{
    if (compressionOf(bytes.data(), bytes.size()) == Compression::None) {
        m_bytes = std::move(bytes);
    } else {
        const std::unique_ptr<ByteSource> content =
            decompressed(std::make_unique<MemorySource>(bytes.data(), bytes.size(), m_name));
        std::vector<uint8_t> piece(1 << 20);
        while (const size_t count = content->read(piece.data(), piece.size())) {
            const auto end = piece.begin() + static_cast<std::ptrdiff_t>(count);
            m_bytes.insert(m_bytes.end(), piece.begin(), end);
        }
    }
    m_packed = std::make_unique<MemoryAccess>(m_bytes.data(), m_bytes.size(), m_name);
}

LogFile::LogFile(std::vector<std::shared_ptr<LogFile>> parts)
    : m_name(parts.front()->getName()), m_isFile(false), m_schema(parts.front()->getSchema()),
      m_parts(std::move(parts))
{
    std::vector<const RandomAccess*> contents;
    for (const auto& part : m_parts) {
        contents.push_back(&part->getContent());
        m_warnings.insert(m_warnings.end(), part->getWarnings().begin(), part->getWarnings().end());
    }
    m_packed = std::make_unique<JoinedAccess>(contents, m_name);
}

LogFile::~LogFile() = default;

void LogFile::load(const IndexProgress& progress)
{
    if (m_index)
        return;
    IndexedLogOptions options;
    options.onWarning = [this](const std::string& warning) { m_warnings.push_back(warning); };
    options.schema = m_schema;
    if (m_isFile)
        m_saved = IndexedLog::openSaved(m_name, options);
    if (m_saved) {
        m_content = &m_saved->getContent();
        m_index = &m_saved->getIndex();
    } else if (isCompressed()) {
        makeCompressed(progress);
    } else {
        make(progress);
    }
    if (m_made)
        m_made->follow(m_schema, *m_content);
}

// Step by step, so that it can be interrupted.
void LogFile::make(const IndexProgress& progress)
{
    constexpr uint64_t step = 64 << 20;
    const RandomAccess& log = *m_packed;
    FramedPages pages;
    for (uint64_t done = 0; done < log.getSize() || done == 0;) {
        // Candidates are given up only at the end of a beginning.
        const PageOffsets& givenUp = pages.marks[FramedPages::GivenUp];
        auto first = static_cast<uint32_t>(done / pages.pageSize);
        if (!givenUp.isEmpty())
            first = std::min(first, givenUp.getFirstPage());
        pages.truncate(first);
        done = std::min(done + step, log.getSize());
        pages = frameLog(Beginning(log, done), std::move(pages), {});
        checkInterrupt();
        if (progress)
            progress(done);
        if (done == 0)
            break;
    }
    m_made = std::make_unique<Index>(std::move(pages), log.getSize());
    m_index = m_made.get();
    m_content = &log;
}

void LogFile::makeCompressed(const IndexProgress& progress)
{
    std::vector<AccessPoint> points;
    JoinedSource source(
        {m_name}, [this](const SourceError& error) { m_warnings.emplace_back(error.what()); },
        [&](const std::string& path) {
            return std::make_unique<CompressedSource>(std::make_unique<FileSource>(path),
                                                      m_compression, &points);
        });
    WatchedSource watched(source, progress);
    m_made = std::make_unique<Index>(Index::build(watched));
    m_unpacked = std::make_unique<CompressedAccess>(*m_packed, m_compression, std::move(points),
                                                    m_made->getLogSize());
    m_index = m_made.get();
    m_content = m_unpacked.get();
}

bool LogFile::save()
{
    if (!m_isFile)
        return false;
    // A saved index knows no added types, and that of a compressed log has access points.
    if (isCompressed() || m_schema.hasAddedTypes()) {
        IndexedLogOptions options;
        options.save = true;
        const IndexedLog log(m_name, options);
        return log.isSaved() || log.getOrigin() == IndexedLog::Origin::Saved;
    }
    const std::vector<uint8_t> bytes =
        packIndex({LogIdentity::of(*m_packed), m_compression, {}, {}, *m_index});
    try {
        ProductFile file(IndexedLog::indexPath(m_name));
        file.getBuffer().append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        file.finish();
    } catch (const DataError&) {
        return false;
    }
    return true;
}

std::vector<Partition> LogFile::divide(uint64_t bytes) const
{
    const FramedPages& pages = m_index->getPages();
    std::vector<Partition> parts;
    for (uint32_t page = 0; page < pages.getEndPage(); ++page) {
        const uint64_t entry = m_index->getPageEntry(page);
        const PageRow& row = pages.rowOf(page);
        const bool isFull = !parts.empty() && !isCompressed() && m_parts.empty() &&
                            entry - parts.back().begin >= bytes;
        if (parts.empty() || isFull) {
            Partition part;
            part.begin = parts.empty() ? 0 : entry;
            part.context = m_index->getPageContext(page);
            part.context.weekCounter =
                static_cast<uint8_t>(part.context.weekCounter + m_weeksBefore);
            part.timeBefore = known(row.timeBefore);
            if (!parts.empty())
                parts.back().end = entry;
            parts.push_back(part);
        }
        include(parts.back(), row);
    }
    if (!parts.empty())
        parts.back().end = m_index->getLogSize();
    return parts;
}

std::unique_ptr<ByteSource> LogFile::openSource() const
{
    if (!m_parts.empty())
        return std::make_unique<JoinedSource>(getPaths(), JoinedSource::FailureListener());
    if (m_isFile)
        return tqx::openSource(m_name);
    return std::make_unique<MemorySource>(m_bytes.data(), m_bytes.size(), m_name);
}

std::vector<std::string> LogFile::getPaths() const
{
    if (m_parts.empty())
        return {m_name};
    std::vector<std::string> paths;
    for (const auto& part : m_parts)
        paths.push_back(part->getName());
    return paths;
}

ByteSource::Place LogFile::placeOf(uint64_t offset) const
{
    if (m_parts.empty())
        return {m_name, offset};
    const JoinedAccess::Place place = static_cast<const JoinedAccess&>(*m_packed).placeOf(offset);
    return {place.file, place.offset};
}

namespace
{

/// Whether a log ends with a whole block, so that none goes on in the next file.
bool endsWithBlock(const LogFile& log)
{
    const FramedPages& pages = log.getIndex().getPages();
    for (uint32_t page = pages.getEndPage(); page-- > 0;) {
        if (pages.rowOf(page).blocks == 0)
            continue;
        BlockQuery query;
        query.firstPage = page;
        query.endPage = page + 1;
        IndexedBlocks blocks(log.getIndex(), log.getContent(), query);
        uint64_t end = 0;
        for (Block block = {}; blocks.next(block);)
            end = block.offset + block.size;
        return end == log.getIndex().getLogSize();
    }
    return log.getIndex().getLogSize() == 0;
}

/// Follows the week through a log.
WeekContext contextAfter(const LogFile& log, WeekContext context)
{
    const FramedPages& pages = log.getIndex().getPages();
    for (uint32_t page = 0; page < pages.getEndPage(); ++page) {
        const PageRow& row = pages.rowOf(page);
        if (row.firstTow == noTow)
            continue;
        // Weeks that begin within the log are the same whatever comes before it.
        const auto weeks = static_cast<uint8_t>(log.getIndex().getWeekStarts().size());
        uint32_t lastTow = row.lastTow;
        for (uint32_t later = page + 1; later < pages.getEndPage(); ++later) {
            if (pages.rowOf(later).lastTow != noTow)
                lastTow = pages.rowOf(later).lastTow;
        }
        const bool isStart = Kor::MessageApi::TQX_beginsWeek(row.firstTow, context.lastTow);
        return {static_cast<uint8_t>(context.weekCounter + weeks + (isStart ? 1 : 0)), lastTow};
    }
    return context;
}

} // namespace

std::vector<std::shared_ptr<LogFile>> joinLogs(const std::vector<std::shared_ptr<LogFile>>& files,
                                               const IndexProgress& progress)
{
    std::vector<std::vector<std::shared_ptr<LogFile>>> groups;
    for (const auto& file : files) {
        if (groups.empty() || endsWithBlock(*groups.back().back()))
            groups.emplace_back();
        groups.back().push_back(file);
    }
    std::vector<std::shared_ptr<LogFile>> logs;
    WeekContext context;
    for (auto& group : groups) {
        auto log = group.size() == 1 ? group.front() : std::make_shared<LogFile>(std::move(group));
        log->load(progress);
        const WeekContext after = contextAfter(*log, context);
        const auto inside = static_cast<uint8_t>(log->getIndex().getWeekStarts().size());
        log->setWeeksBefore(static_cast<uint8_t>(after.weekCounter - inside));
        context = after;
        logs.push_back(std::move(log));
    }
    return logs;
}

} // namespace tqx::python
