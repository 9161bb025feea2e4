#pragma once

#include "model/GnssSurvey.h"

#include <QWidget>

class QwtPlot;

namespace tqx::view
{

class SatelliteScale;

/// C/N0 of every signal at one epoch: a bar for each band of a satellite.
class StrengthBars : public QWidget
{
    Q_OBJECT

public:
    explicit StrengthBars(QWidget* parent = nullptr);

    /// Null for none.
    void setEpoch(const SkyEpoch* epoch);

    void setEmptyText(const QString& text);
    QwtPlot& getPlot() { return *m_plot; }

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showEpoch();

    SkyEpoch m_epoch = {0, {}};
    QwtPlot* m_plot;
    QString m_emptyText;
};

} // namespace tqx::view
