#pragma once

#include "options/StreamOptions.h"
#include "tqx/gnss/position/SourceChoice.h"
#include "tqx/log/record/RecordDecoder.h"

#include <functional>
#include <optional>
#include <vector>

namespace tqx::tool
{

/// Passes on the positions of one source.
class TrackOutput : public BlockConsumer
{
public:
    using Add = std::function<void(const Position& position)>;

    /// Passes on the positions of `source`. When that is null, those of the first ten seconds are
    /// held back and decide which source is the best. `limit` is the largest number of positions to
    /// pass on, 0 for all; `showsMissing` also passes on those that say that there is none.
    /// Positions wait for their complement from other blocks of the epoch, if the log has any: the
    /// dilutions of precision with `showsMissing`, the attitude without.
    TrackOutput(Add add, const PositionSource* source, uint64_t limit, bool showsMissing);

    void take(BlockStream& stream, const Block& block) override;
    bool counts(const Block&) const override { return false; }
    bool isDone() const override { return m_limit != 0 && m_count == m_limit; }
    void end(InputStream&) override;

    /// How many were passed on.
    uint64_t getCount() const { return m_count; }
    /// Number of the source's blocks that say that there is no position.
    uint64_t getMissing() const { return m_missing; }
    /// Null as long as it is not decided.
    const PositionSource* getSource() const { return m_source; }
    /// Summary of what was held back to decide; empty when the source was given.
    const SourceChoice& getChoice() const { return m_choice; }

private:
    void decide();
    void handOn(const Position& position);
    void add(const Position& position);
    void addWaiting();
    bool isComplement(uint16_t blockNumber) const;
    void takeComplement(const void* record);

    Add m_add;
    const PositionSource* m_source;
    uint64_t m_limit;
    bool m_showsMissing;
    RecordDecoder m_decoder;
    SourceChoice m_choice;
    std::vector<Position> m_kept;
    std::optional<Position> m_waiting; ///< for its complement
    bool m_waits = true;               ///< whether that is expected
    uint64_t m_count = 0;
    uint64_t m_missing = 0;
};

} // namespace tqx::tool
