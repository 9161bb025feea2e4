#pragma once

#include "tqx/gnss/orbit/Geodesy.h"
#include "tqx/gnss/position/SourceChoice.h"
#include "tqx/gnss/quality/Episodes.h"
#include "tqx/gnss/quality/EpochFollower.h"
#include "tqx/gnss/quality/Reference.h"
#include "tqx/gnss/quality/Statistics.h"
#include "tqx/gnss/quality/ThinnedSeries.h"

namespace tqx::quality
{

/// Earth-fixed; a height that is not known is that of the ellipsoid.
Vector earthFixed(const Reference::Place& place);

/// Fix modes, scatter, error and corrections of the positions of each kind of block; in the end the
/// kind that SourceChoice chooses is used.
class PositionQuality
{
public:
    explicit PositionQuality(Reference reference) : m_reference(std::move(reference)) {}

    void take(const Position& position);
    void finish();

    /// Fills in all that is known; `findings` get stretches without fresh corrections.
    void report(Quality& quality) const;

    /// Stretches in which corrections were older than fifteen seconds or were missing after they
    /// had been used, from when the last one came.
    std::vector<Episode> findOldCorrections();

    /// The epochs of the kind that is used; null without positions.
    const EpochFollower* getEpochs() const;

private:
    struct Source {
        const PositionSource* kind = nullptr;
        std::map<Fix, uint64_t> fixes;
        uint64_t epochs = 0;
        EpochFollower follower;
        GnssMillis last = 0;
        std::optional<Vector> origin; ///< that deviations are measured from
        std::optional<LocalFrame> frame;
        std::array<Moments, 3> scatter;
        std::array<Moments, 3> error;
        Moments errorSquares; ///< of the horizontal error
        Moments verticalSquares;
        Quantiles horizontalError;
        Quantiles verticalError;
        Moments speed;
        Moments satellites;
        Moments age;
        std::array<ThinnedSeries, 3> deviations;
        std::array<ThinnedSeries, 3> errors;
        ThinnedSeries used;
        ThinnedSeries ages;
        ThinnedSeries fixSeries;
        Episodes old{10000};
        bool isCorrected = false; ///< corrections have been used
        GnssMillis lastCorrection = 0;
    };

    void addError(Source& source, const Position& position, const Vector& place);
    void followCorrections(Source& source, const Position& position);
    const Source* best() const;

    Reference m_reference;
    SourceChoice m_choice;
    std::map<const PositionSource*, Source> m_sources;
};

} // namespace tqx::quality
