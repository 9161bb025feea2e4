#pragma once

#include "model/GnssSurvey.h"

#include "view/ExportPage.h"

class QLabel;
class QSlider;

namespace tqx::view
{

class SkyPlot;
class SpanPlot;
class StrengthBars;

/// Satellites: where they are, how strong their signals are, and when each was tracked.
class SkyPage : public ExportPage
{
    Q_OBJECT

public:
    /// `survey` is not owned and outlives the page.
    explicit SkyPage(const GnssSurvey& survey, QWidget* parent = nullptr);

    /// Shows a time, in milliseconds of GNSS time.
    void setTime(double time);
    QSlider& getSlider() { return *m_slider; }
    SpanPlot& getVisibility() { return *m_visibility; }

    /// Whether a log is open, which decides what an empty page says.
    void setHasLog(bool hasLog);

protected:
    std::optional<Exported> getExported() override;
    QString getFileName() const override { return "satellites"; }

private:
    void paintAll(QPainter& painter, const QRectF& area) const;
    void writeTable(QTextStream& out) const;
    void showData();
    void showEpoch(int place);

    const GnssSurvey& m_survey;
    SkyPlot* m_sky;
    StrengthBars* m_bars;
    SpanPlot* m_visibility;
    QSlider* m_slider;
    QLabel* m_time;
    bool m_hasLog = false;
};

} // namespace tqx::view
