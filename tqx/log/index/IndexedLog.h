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

/// How a log is opened by its index.
struct TQX_LOG_API IndexedLogOptions {
    FramingOptions framing;

    /// Whether an index that was made or went on is saved beside the log. A folder that cannot be
    /// written is no error.
    bool save = false;

    /// Types whose blocks move the week. The index is saved without what those of descriptions do.
    Schema schema = {};

    FileAccess::Mapping mapping = FileAccess::Mapping::IfPossible;

    /// Hears, once each, of a saved index that is no good (the log is then indexed anew) and of a
    /// compressed log that is damaged or cut off (it then ends there). May be empty. Called while
    /// the log is opened; what it throws ends that.
    std::function<void(const std::string& warning)> onWarning;
};

/// A log file, plain or compressed, with its index: the saved one beside it, if there is one and it
/// is this log's, else one made of all of the log. A log that has become longer since is indexed
/// further.
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
        Made,     ///< by framing all of the log
        Extended, ///< from a saved one of the log when it was shorter
        Saved,    ///< as it was saved
    };

    /// Throws SourceError when the log cannot be opened or read, DataError when there is no memory
    /// to decompress with.
    explicit IndexedLog(const std::string& path, const IndexedLogOptions& options = {});
    ~IndexedLog();

    /// The log with the index that is saved beside it. Null when there is none that is this log's,
    /// so that opening it would mean to read all of it. `options.save` does not count. Throws as
    /// the constructor.
    static std::unique_ptr<IndexedLog> openSaved(const std::string& path,
                                                 const IndexedLogOptions& options = {});

    IndexedLog(const IndexedLog&) = delete;
    IndexedLog& operator=(const IndexedLog&) = delete;

    const Index& getIndex() const { return *m_index; }
    Origin getOrigin() const { return m_origin; }

    /// Whether the index was saved now.
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
