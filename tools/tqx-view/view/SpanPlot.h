#pragma once

#include <QColor>
#include <QString>
#include <QWidget>

#include <vector>

class QScrollBar;
class QwtPlot;

namespace tqx::view
{

class SpanItem;

/// Bars of time, one row below the other.
class SpanPlot : public QWidget
{
    Q_OBJECT

public:
    /// How a bar is meant.
    enum class Kind { Good, Fault, Coloured };

    struct Span {
        double from; ///< milliseconds on the log's time scale
        double to;
        Kind kind = Kind::Good;
        int colour = 0; ///< of a coloured one, see seriesColour()
    };
    struct Row {
        QString label;
        std::vector<Span> spans;
    };

    explicit SpanPlot(QWidget* parent = nullptr);

    /// `shift` is from the log's time scale to the calendar's.
    void setRows(std::vector<Row> rows, double from, double to, double shift);
    const std::vector<Row>& getRows() const;

    /// Marks a time.
    void setCursor(double time);
    void clearCursor();

    void setEmptyText(const QString& text);

    QwtPlot& getPlot() { return *m_plot; }

Q_SIGNALS:
    /// A place was clicked.
    void clicked(double time, int row);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setRange(double from, double to);
    void showVisibleRows();
    void applyColours();
    double timeAt(int x) const;

    QwtPlot* m_plot;
    QScrollBar* m_scroll;
    SpanItem* m_item; ///< owned by the plot
    QString m_emptyText;
    double m_shift = 0;
    double m_first = 0;
    double m_last = 1;
    double m_from = 0;
    double m_to = 1;
    double m_dragTime = 0;
    int m_pressedAt = 0;
    bool m_isPressed = false;
};

} // namespace tqx::view
