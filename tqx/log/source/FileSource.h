#pragma once

#include "tqx/log/source/ByteSource.h"
#include "tqx_log_export.h"

#include <cstdio>
#include <string>

namespace tqx
{

/// A file, from its start to its end.
class TQX_LOG_API FileSource : public ByteSource
{
public:
    /// Opens `path`. Throws SourceError "<path>: <reason>".
    explicit FileSource(const std::string& path);

    /// Continues reading a stream that is already open, such as stdin. It remains the caller's and
    /// must outlive the source. `label` names it in messages.
    FileSource(std::FILE* opened, std::string label);

    ~FileSource() override;
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    /// Waits for `capacity` bytes or the end.
    size_t read(uint8_t* bytes, size_t capacity) override;
    uint64_t skip(uint64_t count) override;
    Place placeOf(uint64_t offset) const override { return {m_name, offset}; }

private:
    std::string m_name;
    std::FILE* m_stream;
    bool m_isOwned;
    uint64_t m_size = 0; ///< of a regular file, else 0
    uint64_t m_position = 0;
};

} // namespace tqx
