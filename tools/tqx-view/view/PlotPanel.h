#pragma once

#include "model/PlotField.h"

#include <QPoint>
#include <QTimer>
#include <QWidget>

#include <memory>
#include <vector>

class QComboBox;
class QLabel;
class QPainter;
class QRubberBand;
class QwtPlot;
class QwtPlotMarker;

namespace tqx::view
{

class SeriesCurve;

/// The plot of one field over time. The times shown are set from outside, the same for all plots.
class PlotPanel : public QWidget
{
    Q_OBJECT

public:
    /// `choice` is the series to show at first, "" for all of them.
    PlotPanel(const QString& expression, QString choice, QWidget* parent = nullptr);
    ~PlotPanel() override;

    PlotField& getField() { return m_field; }
    const PlotField& getField() const { return m_field; }

    /// The series that is shown, "" for all.
    QString getChoice() const { return m_choice; }
    void setChoice(const QString& choice);

    void setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued);

    /// The times shown, in milliseconds on the log's time scale.
    void setRange(double from, double to);

    /// Lets the values shown follow the points again.
    void showAllValues() { m_isValueRangeSet = false; }

    /// Whether the labels of the time axis are shown.
    void setTimeAxisVisible(bool isVisible);

    /// Marks a time and shows the values there.
    void setCursor(double time);
    void clearCursor();

    /// Where the drawing area begins, and how wide it should make its labels for others to be
    /// aligned with it.
    int getLabelWidth() const;
    void setLabelWidth(int width);

    /// Draws the plot as it is, without the controls around it.
    void render(QPainter& painter, const QRectF& area);

    /// The series that are shown.
    std::vector<const PlotSeries*> getShown() const;

    QwtPlot& getPlot() { return *m_plot; }

Q_SIGNALS:
    void closeWanted();
    /// The points have changed.
    void changed();
    /// The user wants other times shown, in all plots.
    void rangeWanted(double from, double to);
    void wholeWanted();
    void cursorMoved(double time);
    void cursorLeft();
    void failed(const QString& reason);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void fieldChanged();
    void updateChoices();
    void updateCurves();
    void applyColours();
    void zoomValues(double factor);
    QRect bandTo(const QPoint& place) const;
    void zoomTo(const QRect& band);
    double timeAt(int x) const;

    PlotField m_field;
    QString m_choice;
    QLabel* m_title;
    QLabel* m_values;
    QComboBox* m_choices;
    QwtPlot* m_plot;
    QwtPlotMarker* m_cursor; ///< owned by the plot, as the curves are
    std::vector<SeriesCurve*> m_curves;
    double m_shift = 0; ///< from the log's time scale to that of the axis
    double m_from = 0;
    double m_to = 1;
    bool m_isValueRangeSet = false; ///< by the user, so that it does not follow the points
    double m_dragTime = 0;
    bool m_isDragging = false;
    QRubberBand* m_band; ///< around what to zoom to
    QPoint m_bandStart;
    QTimer m_updates; ///< so that fast updates do not keep the window busy
};

} // namespace tqx::view
