#pragma once

#include "tqx/log/source/RandomAccess.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>

namespace tqx
{

/// A regular file with random access, of the size that it has when opened.
///
///     FileAccess log("day.tqx");
///     const Index index = Index::build(log);
///
/// Any number of threads may read at the same time.
class TQX_LOG_API FileAccess : public RandomAccess
{
public:
    enum class Mapping {
        /// Maps the file into memory where the system can; the fastest way to read. If somebody
        /// truncates a mapped file, touching the missing part ends the process.
        IfPossible,
        /// Every read asks the system: for files that others are writing.
        Never,
    };

    /// Opens `path`. Throws SourceError "<path>: <reason>" when it cannot be opened or is no
    /// regular file.
    explicit FileAccess(const std::string& path, Mapping mapping = Mapping::IfPossible);
    ~FileAccess() override;
    FileAccess(const FileAccess&) = delete;
    FileAccess& operator=(const FileAccess&) = delete;

    const std::string& getName() const override { return m_name; }
    uint64_t getSize() const override { return m_size; }
    size_t readAt(uint64_t offset, uint8_t* bytes, size_t count) const override;
    const uint8_t* getBytes() const override { return m_mapped; }

private:
    class OpenFile;

    std::string m_name;
    std::unique_ptr<OpenFile> m_file;
    uint64_t m_size = 0;
    const uint8_t* m_mapped = nullptr;
};

} // namespace tqx
