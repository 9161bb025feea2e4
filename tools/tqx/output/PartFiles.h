#pragma once

#include "io/Output.h"
#include "io/Sink.h"
#include "options/StreamOptions.h"
#include "output/PartNames.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tqx::tool
{

/// Where a log is split.
struct PartLimits {
    GnssMillis every = 0; ///< a part has the blocks between two multiples of this; 0 for no limit
    uint64_t size = 0;    ///< of a part in bytes, if it has more than one block; 0 for no limit
};

/// Writes blocks byte for byte into consecutive files. A block without a time, or with one before
/// that of its part, stays with the block before it; blocks before any time are in the first part.
/// Where time runs back by more than a minute, a new part begins.
class PartFiles final : public BlockConsumer, public Sink
{
public:
    /// Inputs are never overwritten: ToolError. Appends one line per written file to `list`.
    PartFiles(PartLimits limits, PartNames& names, std::vector<std::string> inputs, Output& list);

    void take(BlockStream& stream, const Block& block) override;
    void end(InputStream& stream) override;
    void commit() override;
    void flush() override;

private:
    bool beginsPart(const std::optional<GnssMillis>& time, size_t size) const;
    void open(const std::optional<GnssMillis>& time);
    void append(const char* bytes, size_t size, uint64_t blocks);
    void appendHeld();
    void close();

    PartLimits m_limits;
    PartNames& m_names;
    std::vector<std::string> m_inputs;
    Output& m_list;
    std::optional<Output> m_part;
    std::string m_path;                ///< of that
    uint64_t m_blocks = 0;             ///< in it
    uint64_t m_bytes = 0;              ///< in it
    std::optional<GnssMillis> m_start; ///< of its interval
    std::optional<GnssMillis> m_time;  ///< of the last block that had one
    GnssMillis m_latest = 0;           ///< in the part
    std::string m_held;                ///< blocks before any time, until a part has a name for them
    uint64_t m_heldBlocks = 0;
};

} // namespace tqx::tool
