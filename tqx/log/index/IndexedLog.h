#pragma once

#include "tqx/log/index/Index.h"
#include "tqx/log/index/IndexedBlocks.h"
#include "tqx/log/source/CompressedAccess.h"
#include "tqx/log/source/FileAccess.h"
#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{

struct SavedIndex;

/// Options for opening a log by its index.
struct TQX_LOG_API IndexedLogOptions {
    FramingOptions framing;

    /// Save an index that was made or extended beside the log. A folder that cannot be written is
    /// no error.
    bool save = false;

    /// The types whose blocks move the week. What is saved is the index for the built-in ones.
    Schema schema = {};

    FileAccess::Mapping mapping = FileAccess::Mapping::IfPossible;

    /// Called once for a saved index that is unusable (the log is then indexed anew), and once for
    /// a compressed log that is damaged or truncated (it then ends there). May be empty. Called
    /// while the log is opened; opening passes on what it throws.
    std::function<void(const std::string& warning)> onWarning;
};

/// A log file, plain or compressed, with its index: the one saved beside it if that belongs to this
/// log, else one made from the whole log. If the log has grown since, the index is extended.
///
///     IndexedLog log("day.tqx.gz");
///     IndexedBlocks blocks = log.find({{4007}});
///     for (Block block; blocks.next(block);)
///         use(block);
///
/// Any number of threads may call it at the same time.
class TQX_LOG_API IndexedLog
{
public:
    /// How the index came about.
    enum class Origin {
        Made,     ///< by framing the whole log
        Extended, ///< by extending a saved one
        Saved,    ///< as it was saved
    };

    /// Throws SourceError when the log cannot be opened or read, DataError when there is no memory
    /// to decompress with.
    explicit IndexedLog(const std::string& path, const IndexedLogOptions& options = {});
    ~IndexedLog();

    /// Opens the log only if the index saved beside it can be used; null when opening would mean
    /// reading the whole log. Ignores `options.save`. Throws as the constructor.
    static std::unique_ptr<IndexedLog> openSaved(const std::string& path,
                                                 const IndexedLogOptions& options = {});

    IndexedLog(const IndexedLog&) = delete;
    IndexedLog& operator=(const IndexedLog&) = delete;

    const Index& getIndex() const { return *m_index; }
    Origin getOrigin() const { return m_origin; }

    /// Whether this object saved the index.
    bool isSaved() const { return m_hasSaved; }

    /// The log, decompressed; offsets of the index are offsets in it.
    const RandomAccess& getContent() const { return *m_content; }

    /// The blocks of a query. Refers to the log.
    IndexedBlocks find(BlockQuery query) const { return {*m_index, *m_content, std::move(query)}; }

    /// Where the index of a log is saved: beside it, "<path>.tqxi".
    static std::string indexPath(const std::string& path) { return path + ".tqxi"; }

private:
    IndexedLog(const std::string& path, FileAccess::Mapping mapping);

    std::optional<SavedIndex> load(const IndexedLogOptions& options);
    SavedIndex make(const IndexedLogOptions& options) const;
    void save(const SavedIndex& made);
    void take(SavedIndex saved, const IndexedLogOptions& options);

    std::unique_ptr<FileAccess> m_file;
    std::unique_ptr<CompressedAccess> m_unpacked; ///< of a compressed file
    const RandomAccess* m_content = nullptr;
    std::unique_ptr<Index> m_index;
    Origin m_origin = Origin::Made;
    bool m_hasSaved = false;
};

} // namespace tqx
