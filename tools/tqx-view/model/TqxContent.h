#pragma once

#include "model/TaskQueue.h"

#include "tqx/log/index/Index.h"
#include "tqx/log/source/RandomAccess.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tqx::view
{

/// The bytes of one or several files, decompressed, with their index. Never changes; any number of
/// threads may read it.
struct TqxContent {
    std::shared_ptr<const RandomAccess> bytes; ///< keeps what it is made of
    std::shared_ptr<const Index> index;
    std::string name;    ///< for people
    std::string warning; ///< of a compressed log that is damaged; empty for none
    std::string growing; ///< path of a single plain file, which may grow; else empty
};

/// Progress of opening.
using Progress = std::function<void(uint64_t done, uint64_t all)>;

/// Opens files as one log, in the order given; a saved index of a single file is used. Throws
/// SourceError when one cannot be read, and Cancelled once the token is. Files are not mapped, as
/// others may be writing them. `progress` is called by several threads.
TqxContent openContent(const std::vector<std::string>& paths, const TaskToken& token,
                       const Progress& progress);

/// The same log after its file has grown; `content` unchanged when it has not. A file that has
/// shrunk is opened anew. Throws as openContent().
TqxContent extendContent(const TqxContent& content, const TaskToken& token);

/// Thrown by cancelled work.
struct Cancelled {
};

} // namespace tqx::view
