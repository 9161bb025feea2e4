#include "view/SkyPlot.h"

#include "model/LabelPlaces.h"
#include "view/Colours.h"
#include "view/EmptyText.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <map>

namespace tqx::view
{

namespace
{

constexpr double zenith = 90;
constexpr double degree = 3.14159265358979 / 180;
constexpr double markRadius = 4.5;

QPointF placeOf(const Direction& direction, const QPointF& centre, double radius)
{
    const double distance = radius * (zenith - std::max(direction.elevation, 0.0F)) / zenith;
    const double angle = static_cast<double>(direction.azimuth) * degree;
    return centre + QPointF(distance * std::sin(angle), -distance * std::cos(angle));
}

} // namespace

SkyPlot::SkyPlot(QWidget* parent) : QWidget(parent)
{
    setAccessibleName(tr("Sky plot"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SkyPlot::setEpochs(const std::vector<DirectionEpoch>* epochs)
{
    m_epochs = epochs;
    update();
}

void SkyPlot::setTime(double time)
{
    m_time = time;
    update();
}

void SkyPlot::setEmptyText(const QString& text)
{
    m_emptyText = text;
    update();
}

void SkyPlot::paintGrid(QPainter& painter, const Horizon& horizon) const
{
    const auto& [centre, radius] = horizon;
    painter.setPen(QPen(gridColour(palette()), 1));
    painter.setBrush(palette().base());
    painter.drawEllipse(centre, radius, radius);
    painter.setBrush(Qt::NoBrush);
    for (const double elevation : {30.0, 60.0}) {
        const double distance = radius * (zenith - elevation) / zenith;
        painter.drawEllipse(centre, distance, distance);
    }
    for (int azimuth = 0; azimuth < 180; azimuth += 30) {
        const QPointF end(std::sin(azimuth * degree) * radius,
                          -std::cos(azimuth * degree) * radius);
        painter.drawLine(centre - end, centre + end);
    }
    painter.setPen(quietColour(palette()));
    for (const int elevation : {30, 60}) {
        const double distance = radius * (zenith - elevation) / zenith;
        painter.drawText(centre + QPointF(3, -distance - 3), tr("%1°").arg(elevation));
    }
    const double away = radius + 0.8 * fontMetrics().height();
    const std::pair<int, QString> names[] = {
        {0, tr("N")}, {90, tr("E")}, {180, tr("S")}, {270, tr("W")}};
    for (const auto& [azimuth, name] : names) {
        const QPointF place =
            centre + QPointF(std::sin(azimuth * degree) * away, -std::cos(azimuth * degree) * away);
        painter.drawText(QRectF(place - QPointF(20, 10), QSizeF(40, 20)), Qt::AlignCenter, name);
    }
}

void SkyPlot::paintWays(QPainter& painter, const Horizon& horizon, size_t current) const
{
    std::map<SatelliteId, QPolygonF> ways;
    constexpr size_t mostSteps = 300; // of a path, which is at most a few hundred pixels long
    const size_t step = current / mostSteps + 1;
    for (size_t i = 0; i <= current; i += step) {
        for (const Direction& direction : (*m_epochs)[i].directions) {
            if (direction.elevation >= 0) {
                ways[direction.satellite].append(
                    placeOf(direction, horizon.centre, horizon.radius));
            }
        }
    }
    for (const auto& [satellite, way] : ways) {
        QColor colour = systemColour(satellite.system, palette());
        colour.setAlphaF(0.45);
        painter.setPen(QPen(colour, 1.5));
        painter.drawPolyline(way);
    }
}

void SkyPlot::paintSatellites(QPainter& painter, const Horizon& horizon, const QRectF& area,
                              const DirectionEpoch& epoch) const
{
    std::vector<const Direction*> shown;
    std::vector<Mark> marks;
    const QFontMetricsF letters(font(), painter.device());
    for (const Direction& direction : epoch.directions) {
        if (direction.elevation < 0)
            continue;
        const QString name = QString::fromStdString(direction.satellite.text());
        shown.push_back(&direction);
        marks.push_back({placeOf(direction, horizon.centre, horizon.radius),
                         {letters.horizontalAdvance(name), letters.ascent()}});
    }
    painter.setPen(Qt::NoPen);
    for (size_t i = 0; i < shown.size(); ++i) {
        painter.setBrush(systemColour(shown[i]->satellite.system, palette()));
        painter.drawEllipse(marks[i].place, markRadius, markRadius);
    }
    painter.setPen(palette().color(QPalette::WindowText));
    const std::vector<QRectF> labels = placeLabels(marks, markRadius, area);
    for (size_t i = 0; i < shown.size(); ++i) {
        painter.drawText(labels[i], Qt::AlignCenter | Qt::TextDontClip,
                         QString::fromStdString(shown[i]->satellite.text()));
    }
}

void SkyPlot::paint(QPainter& painter, const QRectF& area) const
{
    if (!m_epochs || m_epochs->empty())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font());
    const auto after = std::upper_bound(
        m_epochs->begin(), m_epochs->end(), m_time,
        [](double time, const DirectionEpoch& epoch) { return time < epoch.time; });
    const auto current = static_cast<size_t>(after - m_epochs->begin());
    const Horizon horizon{area.center(), std::min(area.width(), area.height()) / 2.0 -
                                             1.6 * fontMetrics().height()};
    paintGrid(painter, horizon);
    const size_t last = current == 0 ? 0 : current - 1;
    paintWays(painter, horizon, last);
    paintSatellites(painter, horizon, area, (*m_epochs)[last]);
}

void SkyPlot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (!m_epochs || m_epochs->empty()) {
        paintEmptyText(painter, *this, rect(), m_emptyText);
        return;
    }
    paint(painter, rect());
}

} // namespace tqx::view
