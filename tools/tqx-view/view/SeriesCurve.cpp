#include "view/SeriesCurve.h"

#include <QPen>

#include <qwt_symbol.h>

#include <algorithm>

namespace tqx::view
{

SeriesCurve::SeriesCurve()
{
    setPaintAttribute(QwtPlotCurve::ClipPolygons, true);
    setPaintAttribute(QwtPlotCurve::FilterPoints, true);
    setItemAttribute(QwtPlotItem::Legend, false);
}

void SeriesCurve::setPoints(const std::vector<PlotPoint>& points, const std::vector<size_t>& breaks,
                            double shift, int pixels)
{
    QVector<QPointF> samples;
    samples.reserve(static_cast<int>(points.size()));
    for (const PlotPoint& point : points)
        samples.push_back({point.time + shift, point.value});
    m_breaks = breaks;
    constexpr int pixelsForMark = 8;
    m_isSparse = points.size() * pixelsForMark < static_cast<size_t>(pixels);
    setSamples(samples);
}

void SeriesCurve::setColour(const QColor& colour, bool isThin)
{
    setPen(colour, isThin ? 1 : 1.4);
    constexpr int markSize = 5;
    setSymbol(m_isSparse
                  ? new QwtSymbol(QwtSymbol::Ellipse, colour, colour, QSize(markSize, markSize))
                  : nullptr);
}

void SeriesCurve::drawLines(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                            const QRectF& canvas, int from, int to) const
{
    int begin = from;
    for (const size_t place : m_breaks) {
        const int end = static_cast<int>(place) - 1;
        if (end < begin || end > to)
            continue;
        if (end > begin)
            QwtPlotCurve::drawLines(painter, xMap, yMap, canvas, begin, end);
        begin = static_cast<int>(place);
    }
    if (to > begin)
        QwtPlotCurve::drawLines(painter, xMap, yMap, canvas, begin, to);
}

} // namespace tqx::view
