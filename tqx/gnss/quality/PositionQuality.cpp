#include "tqx/gnss/quality/PositionQuality.h"

#include <algorithm>
#include <cmath>

namespace tqx::quality
{

namespace
{

constexpr double oldAge = 15;     ///< seconds
constexpr double slow = 0.3;      ///< metres per second on average; faster antennas move
constexpr double smallArea = 100; ///< metres of scatter; beyond it the antenna moves

double squareOf(double value)
{
    return value * value;
}

} // namespace

Vector earthFixed(const Reference::Place& place)
{
    constexpr double degree = pi / 180;
    return toEarthFixed({place.latitude * degree, place.longitude * degree,
                         std::isnan(place.height) ? 0 : place.height});
}

void PositionQuality::take(const Position& position)
{
    m_choice.take(position);
    Source& source = m_sources[position.source];
    source.kind = position.source;
    if (source.epochs != 0 && position.time <= source.last)
        return; // a repeated or late block
    source.last = position.time;
    ++source.epochs;
    ++source.fixes[position.fix];
    source.follower.add(position.time);
    source.fixSeries.add(position.time, static_cast<double>(position.fix));
    followCorrections(source, position);
    if (position.fix == Fix::None)
        return;
    if (position.satellites >= 0) {
        source.satellites.add(position.satellites);
        source.used.add(position.time, position.satellites);
    }
    source.speed.add(position.groundSpeed());
    if (std::isnan(position.latitude) || std::isnan(position.longitude))
        return;
    const Vector place = earthFixed({position.latitude, position.longitude, position.height});
    if (!source.origin) {
        source.origin = place;
        source.frame.emplace(toGeodetic(place));
    }
    const Vector local = source.frame->toLocal(place - *source.origin);
    const std::array<double, 3> parts = {local.x, local.y, local.z};
    for (size_t i = 0; i < parts.size(); ++i) {
        source.scatter[i].add(parts[i]);
        source.deviations[i].add(position.time, parts[i]);
    }
    addError(source, position, place);
}

void PositionQuality::addError(Source& source, const Position& position, const Vector& place)
{
    Reference::Place truth;
    if (m_reference.fixed) {
        truth = *m_reference.fixed;
    } else {
        const auto found = std::lower_bound(
            m_reference.track.begin(), m_reference.track.end(), position.time,
            [](const Reference::TimedPlace& each, GnssMillis time) { return each.time < time; });
        if (found == m_reference.track.end() || found->time != position.time)
            return;
        truth = found->place;
    }
    const Vector reference = earthFixed(truth);
    const Vector local = LocalFrame(toGeodetic(reference)).toLocal(place - reference);
    const std::array<double, 3> parts = {local.x, local.y, local.z};
    for (size_t i = 0; i < parts.size(); ++i) {
        source.error[i].add(parts[i]);
        source.errors[i].add(position.time, parts[i]);
    }
    const double horizontal = std::hypot(local.x, local.y);
    source.errorSquares.add(squareOf(horizontal));
    source.verticalSquares.add(squareOf(local.z));
    source.horizontalError.add(horizontal);
    source.verticalError.add(std::fabs(local.z));
}

void PositionQuality::followCorrections(Source& source, const Position& position)
{
    const double age = position.correctionAge;
    if (!std::isnan(age)) {
        source.age.add(age);
        source.ages.add(position.time, age);
        source.isCorrected = true;
        source.lastCorrection = position.time - static_cast<GnssMillis>(age * 1e3);
        if (age <= oldAge)
            return source.old.pass(position.time);
    } else if (!source.isCorrected || position.fix == Fix::None) {
        return;
    }
    const double since =
        std::isnan(age) ? static_cast<double>(position.time - source.lastCorrection) * 1e-3 : age;
    if (since <= oldAge)
        return;
    source.old.hold(position.time, since);
    source.old.beginAt(source.lastCorrection);
}

void PositionQuality::finish()
{
    for (auto& [kind, source] : m_sources)
        source.follower.finish();
}

const PositionQuality::Source* PositionQuality::best() const
{
    const PositionSource* const kind = m_choice.best();
    if (kind)
        return &m_sources.at(kind);
    return m_sources.empty() ? nullptr : &m_sources.begin()->second;
}

const EpochFollower* PositionQuality::getEpochs() const
{
    const Source* const source = best();
    return source ? &source->follower : nullptr;
}

std::vector<Episode> PositionQuality::findOldCorrections()
{
    const Source* const source = best();
    return source ? m_sources.at(source->kind).old.finish() : std::vector<Episode>();
}

void PositionQuality::report(Quality& quality) const
{
    const Source* const source = best();
    if (!source)
        return;
    quality.positionSource = source->kind->name;
    quality.positions = source->epochs;
    for (const auto& [fix, epochs] : source->fixes)
        quality.fixes.push_back({fix, epochs});
    quality.satellitesUsed = source->satellites.get();
    quality.correctionAge = source->age.get();
    const auto fill = [](Scatter& to, const std::array<Moments, 3>& from) {
        to.epochs = from[0].getCount();
        for (size_t i = 0; i < from.size(); ++i) {
            to.mean[i] = from[i].getMean();
            to.deviation[i] = from[i].get().deviation;
        }
    };
    fill(quality.scatter, source->scatter);
    quality.isMoving =
        source->speed.getMean() > slow ||
        std::hypot(quality.scatter.deviation[0], quality.scatter.deviation[1]) > smallArea;
    if (quality.isMoving)
        quality.scatter = {};
    quality.scatter.horizontalRms =
        std::hypot(quality.scatter.deviation[0], quality.scatter.deviation[1]);
    quality.scatter.verticalRms = quality.scatter.deviation[2];
    fill(quality.error, source->error);
    quality.error.horizontalRms = std::sqrt(source->errorSquares.getMean());
    quality.error.verticalRms = std::sqrt(source->verticalSquares.getMean());
    quality.error.horizontal95 = source->horizontalError.get(0.95);
    quality.error.vertical95 = source->verticalError.get(0.95);

    static const char* const directions[] = {"east", "north", "up"};
    const bool hasErrors = !source->errors[0].isEmpty();
    Plot deviations{hasErrors ? "error" : "deviation",
                    hasErrors ? "Position error against the reference"
                              : "Position, from the first one",
                    "m",
                    {}};
    for (size_t i = 0; i < 3; ++i) {
        const ThinnedSeries& series = hasErrors ? source->errors[i] : source->deviations[i];
        if (!series.isEmpty())
            deviations.series.push_back(series.get(directions[i]));
    }
    if (!deviations.series.empty())
        quality.plots.push_back(std::move(deviations));
    if (!source->used.isEmpty()) {
        quality.plots.push_back(
            {"used", "Satellites in the position", "", {source->used.get("used")}});
    }
    if (!source->ages.isEmpty())
        quality.plots.push_back({"age", "Age of corrections", "s", {source->ages.get("age")}});
}

} // namespace tqx::quality
