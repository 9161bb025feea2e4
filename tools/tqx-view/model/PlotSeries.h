#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace tqx::view
{

struct PlotPoint {
    double time; ///< milliseconds on the log's time scale
    double value;
};

/// Points in the order of time, in bounded memory: thin() halves them, keeping the least and the
/// greatest of neighbours, so that no peak is lost. Used by one thread: points that were added late
/// are sorted in when the series is next looked at.
class PlotSeries
{
public:
    explicit PlotSeries(QString title) : m_name(std::move(title)) {}

    const QString& getName() const { return m_name; }

    /// Points may come in any order, as in a log whose times go back.
    void add(double time, double value);

    size_t size() const { return m_points.size() + m_late.size(); }
    const PlotPoint& operator[](size_t index) const { return points()[index]; }

    /// The most original points that one kept point represents; 1 if all are kept.
    unsigned getThinning() const { return m_thinning; }
    void thin();

    /// Points between two times and one on each side, for a picture of so many pixels in width:
    /// where a pixel has more than four, its first, least, greatest and last one. `breaks` receives
    /// the places in the result before which there is a gap in time.
    std::vector<PlotPoint> visible(double from, double to, int pixels,
                                   std::vector<size_t>& breaks) const;

    /// The point next to a time, nothing in an empty series.
    std::optional<PlotPoint> nearest(double time) const;

    /// First and last time; only for a series that is not empty.
    double getFirstTime() const { return points().front().time; }
    double getLastTime() const { return points().back().time; }

    /// Points that were moved so far to sort others in: the work that times going back cost.
    uint64_t getMoved() const { return m_moved; }

private:
    const std::vector<PlotPoint>& points() const;
    void sortIn() const;
    void findGaps(size_t first, double last) const;
    size_t firstAt(double time) const;
    bool isGap(const PlotPoint& before, const PlotPoint& after) const;
    bool isTooLong(double step) const;
    void countStep(double step);

    QString m_name;
    mutable std::vector<PlotPoint> m_points;
    mutable std::vector<PlotPoint> m_late; ///< not sorted in yet, as they came
    mutable std::vector<double> m_gapEnds; ///< times of the first points after a gap
    mutable uint64_t m_moved = 0;
    unsigned m_thinning = 1;
    double m_usualStep = 0; ///< interval of most points
    int m_votes = 0;        ///< for the usual step, by majority
};

} // namespace tqx::view
