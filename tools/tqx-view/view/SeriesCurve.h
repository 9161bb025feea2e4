#pragma once

#include "model/PlotSeries.h"

#include <QColor>

#include <qwt_plot_curve.h>

#include <vector>

namespace tqx::view
{

/// A line through points, broken where there are gaps in time; where there are few of them, each is
/// marked as well.
class SeriesCurve : public QwtPlotCurve
{
public:
    SeriesCurve();

    /// `breaks` are the places before which there is a gap; times are moved by `shift`.
    void setPoints(const std::vector<PlotPoint>& points, const std::vector<size_t>& breaks,
                   double shift, int pixels);
    void setColour(const QColor& colour, bool isThin);

protected:
    void drawLines(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                   const QRectF& canvas, int from, int to) const override;

private:
    std::vector<size_t> m_breaks;
    bool m_isSparse = false;
};

} // namespace tqx::view
