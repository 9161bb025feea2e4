#pragma once

#include "tqx/log/source/ByteSource.h"
#include "tqx_log_export.h"

#include <memory>
#include <string>

namespace tqx
{

/// Opens a file, decompressing it if it begins as a gzip or a Zstandard file does, whatever its
/// name. Throws SourceError when it cannot be opened or read, DataError when there is no memory to
/// decompress with.
TQX_LOG_API std::unique_ptr<ByteSource> openSource(const std::string& path);

/// The content of a source that may be compressed. Takes over `source`, which must not have been
/// read from, and reads no more of it than is needed to tell (a live source of blocks: one byte).
/// Throws what the source throws, and DataError as above.
TQX_LOG_API std::unique_ptr<ByteSource> decompressed(std::unique_ptr<ByteSource> source);

} // namespace tqx
