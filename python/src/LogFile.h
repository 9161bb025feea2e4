#pragma once

#include "tqx/log/index/Index.h"
#include "tqx/log/schema/Schema.h"
#include "tqx/log/source/ByteSource.h"
#include "tqx/log/source/Decompressor.h"
#include "tqx/log/source/RandomAccess.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx
{
class IndexedLog;
class JoinedAccess;
} // namespace tqx

namespace tqx::python
{

/// Receives how many bytes of a log were indexed.
using IndexProgress = std::function<void(uint64_t done)>;

/// A part of a log that can be read without the rest of it.
struct Partition {
    uint64_t begin = 0;
    uint64_t end = 0;
    WeekContext context; ///< of decoding before it
    std::optional<GnssMillis> timeBefore;
    std::optional<GnssMillis> first; ///< earliest and latest time of its blocks
    std::optional<GnssMillis> last;
    uint64_t blocks = 0;
};

/// One log, a file or bytes in memory, with its index, which is made when it is needed. Several
/// files of one log are several of these that know what comes before them, see joinLogs().
class LogFile
{
public:
    /// A file with blocks of the schema's types. Throws SourceError when it cannot be opened.
    explicit LogFile(std::string path, const Schema& schema = {});

    /// The bytes of a log, which may be compressed; `name` names it in messages.
    LogFile(std::vector<uint8_t> bytes, std::string name, const Schema& schema = {});

    /// Files that follow each other, after their load(), as one log.
    explicit LogFile(std::vector<std::shared_ptr<LogFile>> parts);
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    const std::string& getName() const { return m_name; }
    const Schema& getSchema() const { return m_schema; }

    /// Names of the files that it consists of.
    std::vector<std::string> getPaths() const;

    /// The file of a byte of the content, and its offset there.
    ByteSource::Place placeOf(uint64_t offset) const;

    /// Weeks that began in the log before this file.
    uint8_t getWeeksBefore() const { return m_weeksBefore; }
    void setWeeksBefore(uint8_t weeks) { m_weeksBefore = weeks; }

    /// Size of the file as stored.
    uint64_t getPackedSize() const { return m_packed->getSize(); }
    bool isCompressed() const { return m_compression != Compression::None; }
    bool hasIndex() const { return m_index != nullptr; }

    /// Whether the index is the one that was saved beside the log.
    bool isIndexSaved() const { return m_saved != nullptr; }

    /// Reads the index that is saved beside the log, if it is this log's, or else makes one, unless
    /// that was done. Can be interrupted. Throws SourceError.
    void load(const IndexProgress& progress);

    /// Saves the index beside the log, after load(). False when that cannot be written, or is no
    /// file. Throws SourceError.
    bool save();

    /// After load().
    const Index& getIndex() const { return *m_index; }
    const RandomAccess& getContent() const { return *m_content; }

    /// What went wrong with the content without ending it: a compressed log that is cut off.
    const std::vector<std::string>& getWarnings() const { return m_warnings; }

    /// Parts of about so many bytes, in order, that together are the whole log. A compressed log is
    /// one part, and so are joined files. After load().
    std::vector<Partition> divide(uint64_t bytes) const;

    /// All bytes of the content in order, decompressed. Throws SourceError.
    std::unique_ptr<ByteSource> openSource() const;

private:
    void make(const IndexProgress& progress);
    void makeCompressed(const IndexProgress& progress);

    std::string m_name;
    bool m_isFile;
    Compression m_compression = Compression::None;
    std::vector<uint8_t> m_bytes;
    std::unique_ptr<const RandomAccess> m_packed;
    std::unique_ptr<IndexedLog> m_saved;
    std::unique_ptr<Index> m_made;
    std::unique_ptr<const RandomAccess> m_unpacked;
    const Index* m_index = nullptr;
    const RandomAccess* m_content = nullptr;
    std::vector<std::string> m_warnings;
    Schema m_schema;
    std::vector<std::shared_ptr<LogFile>> m_parts; ///< of joined files
    uint8_t m_weeksBefore = 0;
};

/// Makes one log of files that follow each other, after their load(): the last block of a file may
/// end in the next one, and weeks are counted through all of them. Returns the files, of which
/// those that share a block are joined. Can be interrupted. Throws SourceError.
std::vector<std::shared_ptr<LogFile>> joinLogs(const std::vector<std::shared_ptr<LogFile>>& files,
                                               const IndexProgress& progress);

} // namespace tqx::python
