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
/// greatest of neighbours, so that no peak is lost.
class PlotSeries
{
public:
    explicit PlotSeries(QString title) : m_name(std::move(title)) {}

    const QString& getName() const { return m_name; }

    /// A point at or after the last one; earlier ones are sorted in, which costs more.
    void add(double time, double value);

    size_t size() const { return m_points.size(); }
    const PlotPoint& operator[](size_t index) const { return m_points[index]; }

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
    double getFirstTime() const { return m_points.front().time; }
    double getLastTime() const { return m_points.back().time; }

private:
    size_t firstAt(double time) const;
    bool isGap(const PlotPoint& before, const PlotPoint& after) const;
    bool isTooLong(double step) const;
    void countStep(double step);

    QString m_name;
    std::vector<PlotPoint> m_points;
    std::vector<double> m_gapEnds; ///< times of the first points after a gap
    unsigned m_thinning = 1;
    double m_usualStep = 0; ///< interval of most points
    int m_votes = 0;        ///< for the usual step, by majority
};

} // namespace tqx::view
