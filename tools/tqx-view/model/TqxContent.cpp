#include "model/TqxContent.h"

#include "tqx/log/DataError.h"
#include "tqx/log/index/IndexedLog.h"
#include "tqx/log/source/CompressedAccess.h"
#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/source/FileSource.h"
#include "tqx/log/source/JoinedAccess.h"
#include "tqx/log/source/JoinedSource.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace tqx::view
{

namespace
{

/// A wrapper through which framing reads, so that it can be watched and stopped.
class WatchedAccess : public RandomAccess
{
public:
    WatchedAccess(const RandomAccess& watched, const TaskToken& token, const Progress& progress)
        : m_watched(watched), m_token(token), m_progress(progress)
    {
    }

    const std::string& getName() const override { return m_watched.getName(); }
    uint64_t getSize() const override { return m_watched.getSize(); }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override
    {
        if (m_token.isCancelled())
            throw SourceError(getName() + ": cancelled");
        const size_t got = m_watched.readAt(offset, bytes, count);
        const uint64_t done = m_done.fetch_add(got) + got;
        if (m_progress)
            m_progress(std::min(done, getSize()), getSize());
        return got;
    }

private:
    const RandomAccess& m_watched;
    const TaskToken& m_token;
    const Progress& m_progress;
    mutable std::atomic<uint64_t> m_done{0};
};

class WatchedSource : public FileSource
{
public:
    WatchedSource(const std::string& path, uint64_t size, const TaskToken& token,
                  const Progress& progress)
        : FileSource(path), m_size(size), m_token(token), m_progress(progress)
    {
    }

    size_t read(uint8_t* bytes, size_t capacity) override
    {
        if (m_token.isCancelled())
            throw SourceError("cancelled");
        const size_t got = FileSource::read(bytes, capacity);
        m_done += got;
        if (m_progress)
            m_progress(std::min(m_done, m_size), m_size);
        return got;
    }

private:
    uint64_t m_size;
    uint64_t m_done = 0;
    const TaskToken& m_token;
    const Progress& m_progress;
};

/// A file whose content keeps what it is read through.
struct OpenFile : RandomAccess {
    std::unique_ptr<FileAccess> file;
    std::unique_ptr<CompressedAccess> unpacked;

    const RandomAccess& content() const
    {
        return unpacked ? static_cast<const RandomAccess&>(*unpacked) : *file;
    }
    const std::string& getName() const override { return file->getName(); }
    uint64_t getSize() const override { return content().getSize(); }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override
    {
        return content().readAt(offset, bytes, count);
    }
};

/// Several of them.
struct OpenFiles : RandomAccess {
    std::vector<std::shared_ptr<const RandomAccess>> parts;
    std::unique_ptr<JoinedAccess> joined;

    const std::string& getName() const override { return joined->getName(); }
    uint64_t getSize() const override { return joined->getSize(); }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override
    {
        return joined->readAt(offset, bytes, count);
    }
};

/// The content of a log that was opened with its saved index.
struct OpenLog : RandomAccess {
    std::unique_ptr<IndexedLog> log;

    const std::string& getName() const override { return log->getContent().getName(); }
    uint64_t getSize() const override { return log->getContent().getSize(); }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override
    {
        return log->getContent().readAt(offset, bytes, count);
    }
};

Compression compressionOf(const RandomAccess& file)
{
    uint8_t first[4];
    return tqx::compressionOf(first, file.readAt(0, first, sizeof first));
}

FramingOptions framingOptions()
{
    FramingOptions options;
    options.threads = std::clamp(std::thread::hardware_concurrency(), 1U, 4U);
    return options;
}

/// A compressed file is read once, for its index and its access points.
std::shared_ptr<const Index> unpack(OpenFile& opened, Compression compression,
                                    const TaskToken& token, const Progress& progress,
                                    std::string& warning)
{
    std::vector<AccessPoint> points;
    const std::string& path = opened.file->getName();
    const uint64_t size = opened.file->getSize();
    JoinedSource source(
        {path}, [&](const SourceError& error) { warning = error.what(); },
        [&](const std::string&) {
            return std::make_unique<CompressedSource>(
                std::make_unique<WatchedSource>(path, size, token, progress), compression, &points);
        });
    auto index = std::make_shared<const Index>(Index::build(source));
    opened.unpacked = std::make_unique<CompressedAccess>(*opened.file, compression,
                                                         std::move(points), index->getLogSize());
    return index;
}

TqxContent openFile(const std::string& path, const TaskToken& token, const Progress& progress)
{
    TqxContent content;
    content.name = path;
    auto opened = std::make_shared<OpenFile>();
    opened->file = std::make_unique<FileAccess>(path, FileAccess::Mapping::Never);
    const Compression compression = compressionOf(*opened->file);
    if (compression != Compression::None) {
        content.index = unpack(*opened, compression, token, progress, content.warning);
    } else {
        const WatchedAccess watched(*opened->file, token, progress);
        content.index = std::make_shared<const Index>(Index::build(watched, framingOptions()));
        content.growing = path;
    }
    content.bytes = std::move(opened);
    return content;
}

/// Opens the log with the index that is saved beside it, if there is one.
bool openSaved(const std::string& path, TqxContent& content)
{
    IndexedLogOptions options;
    options.framing = framingOptions();
    options.mapping = FileAccess::Mapping::Never;
    auto opened = std::make_shared<OpenLog>();
    opened->log = IndexedLog::openSaved(path, options);
    if (!opened->log)
        return false;
    content.name = path;
    content.index = std::shared_ptr<const Index>(opened, &opened->log->getIndex());
    if (compressionOf(FileAccess(path, FileAccess::Mapping::Never)) == Compression::None)
        content.growing = path;
    content.bytes = std::move(opened);
    return true;
}

TqxContent open(const std::vector<std::string>& paths, const TaskToken& token,
                const Progress& progress)
{
    TqxContent content;
    if (paths.size() == 1)
        return openSaved(paths[0], content) ? content : openFile(paths[0], token, progress);
    auto all = std::make_shared<OpenFiles>();
    std::vector<const RandomAccess*> parts;
    for (const std::string& path : paths) {
        auto opened = std::make_shared<OpenFile>();
        opened->file = std::make_unique<FileAccess>(path, FileAccess::Mapping::Never);
        const Compression compression = compressionOf(*opened->file);
        if (compression != Compression::None)
            unpack(*opened, compression, token, progress, content.warning);
        parts.push_back(opened.get());
        all->parts.push_back(std::move(opened));
    }
    content.name = paths.front() + " ... " + paths.back();
    all->joined = std::make_unique<JoinedAccess>(parts, content.name);
    const WatchedAccess watched(*all, token, progress);
    content.index = std::make_shared<const Index>(Index::build(watched, framingOptions()));
    content.bytes = std::move(all);
    return content;
}

} // namespace

TqxContent openContent(const std::vector<std::string>& paths, const TaskToken& token,
                       const Progress& progress)
{
    try {
        TqxContent content = open(paths, token, progress);
        if (token.isCancelled())
            throw Cancelled();
        return content;
    } catch (const SourceError&) {
        if (token.isCancelled())
            throw Cancelled();
        throw;
    }
}

TqxContent extendContent(const TqxContent& content, const TaskToken& token)
{
    if (content.growing.empty())
        return content;
    auto opened = std::make_shared<OpenFile>();
    opened->file = std::make_unique<FileAccess>(content.growing, FileAccess::Mapping::Never);
    const uint64_t size = opened->file->getSize();
    if (size == content.index->getLogSize())
        return content;
    if (size < content.index->getLogSize())
        return openContent({content.growing}, token, {});
    TqxContent longer = content;
    auto index = std::make_shared<Index>(*content.index);
    index->extend(*opened->file, framingOptions());
    longer.index = std::move(index);
    longer.bytes = std::move(opened);
    return longer;
}

} // namespace tqx::view
