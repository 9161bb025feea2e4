#pragma once

#include "tqx/log/text/Buffer.h"

#include <cstdio>
#include <string>

struct gzFile_s;

namespace tqx::python
{

/// A file that is written under a temporary name and renamed when complete.
class OutputFile
{
public:
    /// Throws DataError when it cannot be created.
    explicit OutputFile(std::string path, bool isCompressed = false);

    /// Removes an unfinished file.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& getPath() const { return m_path; }
    Buffer& getBuffer() { return m_buffer; }

    /// Writes the buffer to the file if it is large. Throws DataError.
    void commit();

    /// Completes the file. Throws DataError.
    void finish();

private:
    void flush();
    [[noreturn]] void fail() const;

    std::string m_path;
    std::string m_partPath;
    std::FILE* m_file = nullptr;
    gzFile_s* m_packed = nullptr;
    Buffer m_buffer;
};

} // namespace tqx::python
