#include "model/PlotSeries.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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
    m_late.push_back({time, value});
}

const std::vector<PlotPoint>& PlotSeries::points() const
{
    if (!m_late.empty())
        sortIn();
    return m_points;
}

/// All late points at once: one by one, each would move all points after it.
void PlotSeries::sortIn() const
{
    const auto isEarlier = [](const PlotPoint& left, const PlotPoint& right) {
        return left.time < right.time;
    };
    std::stable_sort(m_late.begin(), m_late.end(), isEarlier);
    const double last = m_late.back().time;
    const auto begin =
        std::upper_bound(m_points.begin(), m_points.end(), m_late.front(), isEarlier);
    const auto first = static_cast<size_t>(begin - m_points.begin());
    std::vector<PlotPoint> merged;
    merged.reserve(m_points.size() - first + m_late.size());
    std::merge(begin, m_points.end(), m_late.begin(), m_late.end(), std::back_inserter(merged),
               isEarlier);
    m_moved += merged.size();
    m_points.resize(first);
    m_points.insert(m_points.end(), merged.begin(), merged.end());
    m_late.clear();
    findGaps(first, last);
}

/// Gaps from a point on, up to the first one after a time. Where points were thinned, steps are
/// longer without a gap.
void PlotSeries::findGaps(size_t first, double last) const
{
    const double longest = m_thinning == 1 ? 0 : 4.0 * m_thinning * m_usualStep;
    const auto begin = std::lower_bound(m_gapEnds.begin(), m_gapEnds.end(), m_points[first].time);
    const std::vector<double> before(begin, m_gapEnds.end());
    m_gapEnds.erase(begin, m_gapEnds.end());
    size_t i = first;
    for (bool isInside = true; i < m_points.size() && isInside; ++i) {
        const double time = m_points[i].time;
        const double step = i == 0 ? 0 : time - m_points[i - 1].time;
        const bool wasGap = std::binary_search(before.begin(), before.end(), time);
        if (isTooLong(step) && (wasGap || step > longest))
            m_gapEnds.push_back(time);
        isInside = time <= last;
    }
    if (i < m_points.size()) {
        const double end = m_points[i - 1].time;
        m_gapEnds.insert(m_gapEnds.end(), std::upper_bound(before.begin(), before.end(), end),
                         before.end());
    }
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
    points(); // also those that came late
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
    std::vector<PlotPoint> chosen;
    if (points().empty() || pixels <= 0 || !(to > from))
        return chosen;
    size_t begin = firstAt(from);
    size_t end = firstAt(to);
    begin -= begin > 0 ? 1 : 0;
    end = std::min(end + 1, m_points.size());
    const auto append = [&](size_t i) {
        if (i > 0 && isGap(m_points[i - 1], m_points[i]))
            breaks.push_back(chosen.size());
        chosen.push_back(m_points[i]);
    };
    if (end - begin <= static_cast<size_t>(pixels) * 4) {
        for (size_t i = begin; i < end; ++i)
            append(i);
        return chosen;
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
            breaks.push_back(chosen.size());
        const size_t kept[] = {i, std::min(least, greatest), std::max(least, greatest), last};
        size_t before = m_points.size();
        for (const size_t k : kept) {
            if (k != before)
                chosen.push_back(m_points[k]);
            before = k;
        }
        i = last + 1;
    }
    return chosen;
}

std::optional<PlotPoint> PlotSeries::nearest(double time) const
{
    if (points().empty())
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
