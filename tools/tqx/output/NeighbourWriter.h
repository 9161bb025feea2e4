#pragma once

#include "options/StreamOptions.h"
#include "tqx/log/text/Buffer.h"

namespace tqx::tool
{

/// Writes the neighbours of one kind unchanged: those within the selected times; each counts with
/// the block before it.
class NeighbourWriter : public BlockConsumer
{
public:
    /// Neither is owned.
    NeighbourWriter(Buffer& buffer, NeighbourKind wanted, const Selection& times)
        : m_out(buffer), m_kind(wanted), m_selection(times)
    {
    }

    void begin(InputStream& stream) override
    {
        stream.setNeighbourListener([this](const Neighbour& neighbour) {
            if (neighbour.kind == m_kind && m_selection.isInTime())
                m_out.append(reinterpret_cast<const char*>(neighbour.data), neighbour.size);
        });
    }
    void take(BlockStream&, const Block&) override {}
    bool canSkip() const override { return false; } // the selection needs the times of all blocks

private:
    Buffer& m_out;
    NeighbourKind m_kind;
    const Selection& m_selection;
};

} // namespace tqx::tool
