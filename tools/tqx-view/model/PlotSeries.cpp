#include "model/PlotSeries.h"

#include <algorithm>
#include <cmath>

namespace tqx::view
{

void PlotSeries::add(double time, double value)
{
    if (m_points.empty() || time >= m_points.back().time) {
        if (!m_points.empty()) {
            const double step = time - m_points.back().time;
            if (isTooLong(step))
                m_gapEnds.push_back(time);
            countStep(step);
        }
        m_points.push_back({time, value});
        return;
    }
    const auto place = m_points.begin() + static_cast<std::ptrdiff_t>(firstAt(time));
    m_points.insert(place, {time, value});
}

/// Boyer-Moore majority vote: the step that more than half of the points have, if there is one.
void PlotSeries::countStep(double step)
{
    if (step <= 0)
        return;
    if (std::abs(step - m_usualStep) < 1) {
        m_votes = std::min(m_votes + 1, 1000);
    } else if (m_votes > 0) {
        --m_votes;
    } else {
        m_usualStep = step;
    }
}

bool PlotSeries::isTooLong(double step) const
{
    return m_votes > 0 && step > 1.5 * m_usualStep;
}

bool PlotSeries::isGap(const PlotPoint& before, const PlotPoint& after) const
{
    const auto end = std::upper_bound(m_gapEnds.begin(), m_gapEnds.end(), before.time);
    return end != m_gapEnds.end() && *end <= after.time;
}

void PlotSeries::thin()
{
    std::vector<PlotPoint> kept;
    kept.reserve(m_points.size() / 2 + 2);
    for (size_t i = 0; i < m_points.size(); i += 4) {
        const size_t end = std::min(i + 4, m_points.size());
        size_t least = i;
        size_t greatest = i;
        for (size_t k = i; k < end; ++k) {
            if (m_points[k].value < m_points[least].value)
                least = k;
            if (m_points[k].value >= m_points[greatest].value)
                greatest = k;
        }
        kept.push_back(m_points[std::min(least, greatest)]);
        if (least != greatest)
            kept.push_back(m_points[std::max(least, greatest)]);
    }
    m_points = std::move(kept);
    m_thinning *= 2;
}

size_t PlotSeries::firstAt(double time) const
{
    const auto found =
        std::lower_bound(m_points.begin(), m_points.end(), time,
                         [](const PlotPoint& point, double wanted) { return point.time < wanted; });
    return static_cast<size_t>(found - m_points.begin());
}

std::vector<PlotPoint> PlotSeries::visible(double from, double to, int pixels,
                                           std::vector<size_t>& breaks) const
{
    breaks.clear();
    std::vector<PlotPoint> points;
    if (m_points.empty() || pixels <= 0 || !(to > from))
        return points;
    size_t begin = firstAt(from);
    size_t end = firstAt(to);
    begin -= begin > 0 ? 1 : 0;
    end = std::min(end + 1, m_points.size());
    const auto append = [&](size_t i) {
        if (i > 0 && isGap(m_points[i - 1], m_points[i]))
            breaks.push_back(points.size());
        points.push_back(m_points[i]);
    };
    if (end - begin <= static_cast<size_t>(pixels) * 4) {
        for (size_t i = begin; i < end; ++i)
            append(i);
        return points;
    }
    const double perPixel = (to - from) / pixels;
    for (size_t i = begin; i < end;) {
        const double column = std::floor((m_points[i].time - from) / perPixel);
        const double columnEnd = from + (column + 1) * perPixel;
        size_t least = i;
        size_t greatest = i;
        size_t last = i;
        const bool hasGap = i > 0 && isGap(m_points[i - 1], m_points[i]);
        for (size_t k = i + 1; k < end && m_points[k].time < columnEnd; ++k) {
            if (m_points[k].value < m_points[least].value)
                least = k;
            if (m_points[k].value > m_points[greatest].value)
                greatest = k;
            last = k;
        }
        if (hasGap)
            breaks.push_back(points.size());
        const size_t chosen[] = {i, std::min(least, greatest), std::max(least, greatest), last};
        size_t before = m_points.size();
        for (const size_t k : chosen) {
            if (k != before)
                points.push_back(m_points[k]);
            before = k;
        }
        i = last + 1;
    }
    return points;
}

std::optional<PlotPoint> PlotSeries::nearest(double time) const
{
    if (m_points.empty())
        return std::nullopt;
    const size_t after = firstAt(time);
    if (after == 0)
        return m_points.front();
    if (after == m_points.size())
        return m_points.back();
    const bool isBefore = time - m_points[after - 1].time < m_points[after].time - time;
    return m_points[isBefore ? after - 1 : after];
}

} // namespace tqx::view
