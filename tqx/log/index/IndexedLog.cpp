#include "tqx/log/index/IndexedLog.h"

#include "tqx/log/DataError.h"
#include "tqx/log/index/SavedIndex.h"
#include "tqx/log/source/CompressedSource.h"
#include "tqx/log/source/FileSource.h"
#include "tqx/log/source/JoinedSource.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace tqx
{

namespace
{

Compression recognise(const RandomAccess& file)
{
    uint8_t first[4];
    return compressionOf(first, file.readAt(0, first, sizeof first));
}

void warn(const IndexedLogOptions& options, const std::string& warning)
{
    if (options.onWarning)
        options.onWarning(warning);
}

} // namespace

IndexedLog::IndexedLog(const std::string& path, FileAccess::Mapping mapping)
    : m_file(std::make_unique<FileAccess>(path, mapping))
{
}

IndexedLog::IndexedLog(const std::string& path, const IndexedLogOptions& options)
    : IndexedLog(path, options.mapping)
{
    std::optional<SavedIndex> saved = load(options);
    if (!saved) {
        saved = make(options);
        m_origin = Origin::Made;
    }
    if (options.save && m_origin != Origin::Saved)
        save(*saved);
    take(std::move(*saved), options);
}

std::unique_ptr<IndexedLog> IndexedLog::openSaved(const std::string& path,
                                                  const IndexedLogOptions& options)
{
    std::error_code error;
    if (!std::filesystem::exists(indexPath(path), error))
        return nullptr;
    std::unique_ptr<IndexedLog> log(new IndexedLog(path, options.mapping));
    std::optional<SavedIndex> saved = log->load(options);
    if (!saved)
        return nullptr;
    log->take(std::move(*saved), options);
    return log;
}

void IndexedLog::take(SavedIndex saved, const IndexedLogOptions& options)
{
    if (!saved.damage.empty())
        warn(options, m_file->getName() + ": " + saved.damage);
    m_index = std::make_unique<Index>(std::move(saved.index));
    m_content = m_file.get();
    if (saved.compression != Compression::None) {
        m_unpacked = std::make_unique<CompressedAccess>(
            *m_file, saved.compression, std::move(saved.points), m_index->getLogSize());
        m_content = m_unpacked.get();
    }
    m_index->follow(options.schema, *m_content);
}

IndexedLog::~IndexedLog() = default;

/// The saved index, brought up to date; nothing when there is none for this log.
std::optional<SavedIndex> IndexedLog::load(const IndexedLogOptions& options)
{
    // At worst an index is a few times as large as its log; anything larger is not an index.
    const uint64_t most = 8 * m_file->getSize() + (1 << 20);
    const std::string path = indexPath(m_file->getName());
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return std::nullopt;
    std::error_code error;
    const uint64_t size = std::filesystem::file_size(path, error);
    std::string reason = "it is too large";
    std::optional<SavedIndex> saved;
    if (!error && size <= most) {
        std::vector<uint8_t> bytes(static_cast<size_t>(size));
        stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
        saved = unpackIndex(bytes.data(), static_cast<size_t>(stream.gcount()), reason);
    }
    if (!saved) {
        warn(options, path + ": is not used, " + reason);
        return std::nullopt;
    }
    switch (saved->identity.compare(*m_file)) {
    case LogIdentity::Match::Same:
        if (saved->compression != recognise(*m_file))
            break;
        m_origin = Origin::Saved;
        return saved;
    case LogIdentity::Match::Longer:
        if (saved->compression != Compression::None || recognise(*m_file) != Compression::None)
            return std::nullopt;
        saved->index.extend(*m_file, options.framing);
        saved->identity = LogIdentity::of(*m_file);
        m_origin = Origin::Extended;
        return saved;
    case LogIdentity::Match::Other:
        break;
    }
    warn(options, path + ": is not used: it is the index of another log");
    return std::nullopt;
}

SavedIndex IndexedLog::make(const IndexedLogOptions& options) const
{
    const LogIdentity identity = LogIdentity::of(*m_file);
    const Compression compression = recognise(*m_file);
    if (compression == Compression::None)
        return {identity, compression, {}, {}, Index::build(*m_file, options.framing)};
    std::vector<AccessPoint> points;
    std::string damage;
    const std::string& path = m_file->getName();
    JoinedSource source(
        {path},
        [&](const SourceError& error) {
            damage = std::string(error.what()).substr(path.size() + 2);
        },
        [&](const std::string&) {
            return std::make_unique<CompressedSource>(std::make_unique<FileSource>(path),
                                                      compression, &points);
        });
    Index made = Index::build(source);
    return {identity, compression, std::move(damage), std::move(points), std::move(made)};
}

// Written under another name first, so that nobody reads half of it.
void IndexedLog::save(const SavedIndex& made)
{
    const std::vector<uint8_t> bytes = packIndex(made);
    const std::string path = indexPath(m_file->getName());
    const std::string unfinished = path + ".new";
    std::ofstream stream(unfinished, std::ios::binary | std::ios::trunc);
    stream.write(reinterpret_cast<const char*>(bytes.data()),
                 static_cast<std::streamsize>(bytes.size()));
    stream.close();
    std::error_code error;
    if (stream)
        std::filesystem::rename(unfinished, path, error);
    m_hasSaved = stream && !error;
    if (!m_hasSaved)
        std::filesystem::remove(unfinished, error);
}

} // namespace tqx
