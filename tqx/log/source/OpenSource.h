#pragma once

#include "tqx/log/source/ByteSource.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>

namespace tqx
{

/// Opens a file, decompressing it if it begins like a gzip or a Zstandard file, whatever its name.
/// Throws SourceError when it cannot be opened or read, DataError when there is no memory to
/// decompress with.
TQX_LOG_API std::unique_ptr<ByteSource> openSource(const std::string& path);

/// The content of a source that may be compressed. Takes over `source`, from which nothing may have
/// been read yet, and reads no more of it than needed to decide (one byte of a live source of
/// blocks). Throws what the source throws, and DataError as above.
TQX_LOG_API std::unique_ptr<ByteSource> decompressed(std::unique_ptr<ByteSource> source);

} // namespace tqx
