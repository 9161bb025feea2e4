#pragma once

#include "LogFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx::python
{

/// Bytes of one of the files of a log that an epoch part is read from.
struct EpochPiece {
    std::vector<std::string> paths; ///< several files are joined, and read whole
    uint64_t begin = 0;
    uint64_t end = 0;
};

/// A part of a log for tables of epochs, which depend on the epochs before them. It is read from
/// some time before its first epoch on, and the epochs of that time are not shown.
struct EpochPart {
    std::vector<EpochPiece> pieces;
    std::optional<GnssMillis> from; ///< first epoch that is shown; nothing for the first part
    std::optional<GnssMillis> to;   ///< the first one that is not; nothing for the last part
    uint64_t bytes = 0;             ///< without what is read before and after for the epochs' sake
};

/// Parts of about so many bytes that together show each epoch of a log once, with the values that
/// one pass over all of it gives. All blocks are read that are less than `lead` milliseconds
/// earlier than the first epoch of a part. Logs in which the time goes back have longer parts.
/// `files` as joinLogs() gives them.
std::vector<EpochPart> divideEpochs(const std::vector<std::shared_ptr<LogFile>>& files,
                                    uint64_t bytes, GnssMillis lead);

} // namespace tqx::python
