#pragma once

#include "tqx/log/text/Buffer.h"
#include "tqx_log_export.h"

#include <cstdio>
#include <string>

struct gzFile_s;

namespace tqx
{

/// A file that appears under its name only once it is complete; plain or compressed with gzip.
///
///     ProductFile file("fixes.csv");
///     while (...) {
///         file.getBuffer().append(line);
///         file.commit();
///     }
///     file.finish();
///
/// Errors are DataErrors, "<path>: <reason>"; the unfinished file is then removed with the object.
class TQX_LOG_API ProductFile
{
public:
    /// Creates `path` with ".part" after its name. Throws DataError when that fails.
    explicit ProductFile(std::string path, bool isCompressed = false);

    /// Removes an unfinished file.
    ~ProductFile();
    ProductFile(const ProductFile&) = delete;
    ProductFile& operator=(const ProductFile&) = delete;

    /// The output buffer; append to it, then call commit().
    Buffer& getBuffer() { return m_buffer; }

    /// Flushes a large buffer. Throws DataError.
    void commit()
    {
        if (m_buffer.size() >= pieceSize)
            flush();
    }

    /// Writes the rest, closes the file and gives it its name, in place of a file that has it.
    /// Throws DataError. Nothing may be written after that.
    void finish();

    const std::string& getPath() const { return m_path; }

private:
    static constexpr size_t pieceSize = 1 << 16;

    void flush();
    bool close();
    [[noreturn]] void fail() const;

    std::string m_path;
    std::string m_partPath;
    std::FILE* m_file = nullptr;
    gzFile_s* m_packed = nullptr;
    Buffer m_buffer;
};

} // namespace tqx
