#pragma once

#include "io/Spool.h"
#include "options/StreamOptions.h"
#include "tqx/gnss/rinex/RinexFiles.h"
#include "tqx/log/record/RecordDecoder.h"

#include <optional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// The first pass over a log, as a consumer of its blocks, and the resulting files. What can only
/// be read once is kept in a temporary file for the second pass.
class RinexRun : public BlockConsumer
{
public:
    /// `mustKeep`: the input cannot be read again. Throws ToolError when it cannot be kept.
    RinexRun(const RinexRequest& request, bool mustKeep);

    void begin(InputStream& stream) override;
    void take(BlockStream& stream, const Block& block) override;

    /// Throws DataError.
    void end(InputStream& stream) override;

    /// Writes the files, reading `files` once more unless the input was kept. Throws DataError.
    ExitStatus writeFiles(const std::vector<std::string>& files, bool isQuiet);

private:
    void writeObservations(ByteSource& source);

    bool m_hasMarker; ///< one was asked for
    std::optional<Spool> m_spool;
    RecordDecoder m_decoder;
    RinexFiles m_files;
};

} // namespace tqx::tool
