#pragma once

#include "tqx/gnss/quality/Quality.h"
#include "tqx/gnss/quality/Reference.h"
#include "tqx/log/record/DecodedBlock.h"
#include "tqx/log/stream/BlockStream.h"
#include "tqx_gnss_export.h"

#include <memory>

namespace tqx::quality
{

struct QualityOptions {
    /// Degrees; observations of satellites below are left out, where their elevation is known.
    double mask = 10;
    Reference reference;
};

/// Computes how good the data of a log are, in one pass and in bounded memory: it grows with the
/// number of satellites, and lists are cut at a thousand entries or more.
///
///     QualityGatherer gatherer({});
///     while (stream.next(block))
///         if (QualityGatherer::wants(block.getNumber()) && decoder.decode(block) > 0)
///             gatherer.take(decoder.getDecoded());
///     const Quality quality = gatherer.finish(stream.getCounts());
///
/// Measurements are those of the main antenna, as ObservationGatherer has them.
class TQX_GNSS_API QualityGatherer
{
public:
    explicit QualityGatherer(QualityOptions options);
    ~QualityGatherer();
    QualityGatherer(const QualityGatherer&) = delete;
    QualityGatherer& operator=(const QualityGatherer&) = delete;

    /// Whether blocks of this number have anything to do with it.
    static bool wants(uint16_t blockNumber);

    /// Adds a decoded, wanted block, in the order of the log.
    void take(const DecodedBlock& decoded);

    /// Counts a stretch of bytes that belongs to no block.
    void addDamage(const StreamGap& gap);

    /// Ends the log. Only once.
    Quality finish(const StreamCounts& counts);

private:
    class Work;
    std::unique_ptr<Work> m_work;
};

} // namespace tqx::quality
