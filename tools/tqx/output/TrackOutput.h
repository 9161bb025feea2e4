#pragma once

#include "options/StreamOptions.h"
#include "tqx/gnss/position/SourceChoice.h"
#include "tqx/log/record/RecordDecoder.h"

#include <functional>
#include <optional>
#include <vector>

namespace tqx::tool
{

/// Hands the positions of one source on.
class TrackOutput : public BlockConsumer
{
public:
    using Add = std::function<void(const Position& position)>;

    /// Positions of `source` are handed on. When that is null, those of the first ten seconds are
    /// kept back, and decide which source is the best. `limit` is the largest number of positions
    /// handed on, 0 for all; `showsMissing` hands on those that say that there is none, too, and
    /// has positions wait for the dilutions of precision of their epoch, if the log has such.
    TrackOutput(Add add, const PositionSource* source, uint64_t limit, bool showsMissing);

    void take(BlockStream& stream, const Block& block) override;
    bool counts(const Block&) const override { return false; }
    bool isDone() const override { return m_limit != 0 && m_count == m_limit; }
    void end(InputStream&) override;

    /// How many were handed on.
    uint64_t getCount() const { return m_count; }
    /// Blocks that say that there is no position, of the source.
    uint64_t getMissing() const { return m_missing; }
    /// Null as long as it is not decided.
    const PositionSource* getSource() const { return m_source; }
    /// What was kept back to decide by; empty when the source was given.
    const SourceChoice& getChoice() const { return m_choice; }

private:
    void decide();
    void handOn(const Position& position);
    void add(const Position& position);
    void addWaiting();
    void takeDilution(const void* record);

    Add m_add;
    const PositionSource* m_source;
    uint64_t m_limit;
    bool m_showsMissing;
    RecordDecoder m_decoder;
    SourceChoice m_choice;
    std::vector<Position> m_kept;
    std::optional<Position> m_waiting; ///< for its dilutions of precision
    bool m_waits;                      ///< whether they are expected
    uint64_t m_count = 0;
    uint64_t m_missing = 0;
};

} // namespace tqx::tool
