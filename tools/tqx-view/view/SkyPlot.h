#pragma once

#include "model/GnssSurvey.h"

#include <QWidget>

namespace tqx::view
{

/// Where the satellites are at a time, with their paths since the log began: the zenith in the
/// middle, north up.
class SkyPlot : public QWidget
{
    Q_OBJECT

public:
    explicit SkyPlot(QWidget* parent = nullptr);

    /// `epochs` is not owned; null for none.
    void setEpochs(const std::vector<DirectionEpoch>* epochs);

    /// Shows the last epoch at or before a time.
    void setTime(double time);

    void setEmptyText(const QString& text);

    /// Draws what is shown into an area.
    void paint(QPainter& painter, const QRectF& area) const;

    QSize sizeHint() const override { return {420, 420}; }
    QSize minimumSizeHint() const override { return {200, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// The circle of the horizon.
    struct Horizon {
        QPointF centre;
        double radius;
    };

    void paintGrid(QPainter& painter, const Horizon& horizon) const;
    void paintWays(QPainter& painter, const Horizon& horizon, size_t current) const;
    void paintSatellites(QPainter& painter, const Horizon& horizon, const QRectF& area,
                         const DirectionEpoch& epoch) const;

    const std::vector<DirectionEpoch>* m_epochs = nullptr;
    double m_time = 0;
    QString m_emptyText;
};

} // namespace tqx::view
