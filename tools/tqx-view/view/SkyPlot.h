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

    QSize sizeHint() const override { return {420, 420}; }
    QSize minimumSizeHint() const override { return {200, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintGrid(QPainter& painter) const;
    void paintWays(QPainter& painter, size_t current) const;
    void paintSatellites(QPainter& painter, const DirectionEpoch& epoch) const;
    QPointF placeOf(const Direction& direction) const;
    QPointF centre() const;
    double radius() const;

    const std::vector<DirectionEpoch>* m_epochs = nullptr;
    double m_time = 0;
    QString m_emptyText;
};

} // namespace tqx::view
