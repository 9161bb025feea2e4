#pragma once

#include "model/TrackFigures.h"

#include "view/ExportPage.h"

#include <vector>

class QLabel;
class QLineEdit;
class QwtPlot;

namespace tqx::view
{

/// Positions in metres around a chosen point: from above, and their height over time.
class TrackPage : public ExportPage
{
    Q_OBJECT

public:
    /// `survey` is not owned and outlives the page.
    explicit TrackPage(const GnssSurvey& survey, QWidget* parent = nullptr);
    void setHasLog(bool hasLog);

    /// Text about the positions.
    QString getFiguresText() const;
    QLineEdit& getCentre() { return *m_centre; }

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    std::optional<Exported> getExported() override;
    QString getFileName() const override { return "track"; }

private:
    void paintAll(QPainter& painter, const QRectF& area) const;
    void writeTable(QTextStream& out) const;
    void showData();
    void showPoints();
    void scalePlan();

    const GnssSurvey& m_survey;
    QLineEdit* m_centre;
    QLabel* m_figures;
    QwtPlot* m_plan;
    QwtPlot* m_height;
    QWidget* m_plots;
    std::vector<LocalPoint> m_points;
    bool m_hasLog = false;
};

} // namespace tqx::view
