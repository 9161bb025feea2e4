#include "view/SpanPlot.h"

#include "view/Colours.h"
#include "view/EmptyText.h"
#include "view/TimeAxis.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_item.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_map.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace tqx::view
{

namespace
{

constexpr int rowHeight = 19;

/// Rows by their names instead of their numbers; the first row is the uppermost.
class RowScale : public QwtScaleDraw
{
public:
    explicit RowScale(const std::vector<SpanPlot::Row>& rows) : m_rows(rows)
    {
        enableComponent(Ticks, false);
        enableComponent(Backbone, false);
    }

    QwtText label(double value) const override
    {
        const double row = -value;
        if (row < -0.1 || row > static_cast<double>(m_rows.size()) - 0.9)
            return QwtText(QString());
        return QwtText(m_rows[static_cast<size_t>(std::lround(row))].label);
    }

private:
    const std::vector<SpanPlot::Row>& m_rows;
};

} // namespace

class SpanItem : public QwtPlotItem
{
public:
    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
              const QRectF& canvas) const override
    {
        painter->setRenderHint(QPainter::Antialiasing, false);
        for (size_t i = 0; i < rows.size(); ++i) {
            const double centre = yMap.transform(-static_cast<double>(i));
            painter->fillRect(QRectF(canvas.left(), centre, canvas.width(), 1),
                              gridColour(palette));
            const double half =
                std::min(std::abs(yMap.transform(0) - yMap.transform(1)) * 0.36, 9.0);
            // A bar is never too thin to be seen; faults come last, on top.
            for (const bool isFault : {false, true}) {
                for (const SpanPlot::Span& span : rows[i].spans) {
                    if ((span.kind == SpanPlot::Kind::Fault) != isFault)
                        continue;
                    const double left = std::max(xMap.transform(span.from + shift), canvas.left());
                    const double right = std::min(xMap.transform(span.to + shift), canvas.right());
                    const double width = std::max(right - left, isFault ? 3.0 : 1.0);
                    if (right >= canvas.left() && left <= canvas.right()) {
                        painter->fillRect(QRectF(left, centre - half, width, 2 * half),
                                          colourOf(span));
                    }
                }
            }
        }
        if (!std::isnan(cursor)) {
            painter->setPen(QPen(palette.color(QPalette::Text), 1, Qt::DashLine));
            const double x = xMap.transform(cursor + shift);
            painter->drawLine(QPointF(x, canvas.top()), QPointF(x, canvas.bottom()));
        }
    }

    QColor colourOf(const SpanPlot::Span& span) const
    {
        switch (span.kind) {
        case SpanPlot::Kind::Good:
            return goodColour(palette);
        case SpanPlot::Kind::Fault:
            return faultColour(palette);
        default:
            return seriesColour(span.colour, palette);
        }
    }

    std::vector<SpanPlot::Row> rows;
    QPalette palette;
    double shift = 0;
    double cursor = std::numeric_limits<double>::quiet_NaN();
};

SpanPlot::SpanPlot(QWidget* parent)
    : QWidget(parent), m_plot(new QwtPlot(this)), m_scroll(new QScrollBar(Qt::Vertical, this)),
      m_item(new SpanItem)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_plot, 1);
    layout->addWidget(m_scroll);
    m_plot->hide();
    m_scroll->hide();
    connect(m_scroll, &QScrollBar::valueChanged, this, &SpanPlot::showVisibleRows);
    useTimeAxis(*m_plot);
    m_plot->setAutoReplot(false);
    m_item->attach(m_plot);
    m_plot->setAxisScaleDraw(QwtPlot::yLeft, new RowScale(m_item->rows));
    auto* canvas = qobject_cast<QwtPlotCanvas*>(m_plot->canvas());
    canvas->setFrameStyle(QFrame::NoFrame);
    canvas->installEventFilter(this);
    applyColours();
}

void SpanPlot::setEmptyText(const QString& text)
{
    m_emptyText = text;
    update();
}

const std::vector<SpanPlot::Row>& SpanPlot::getRows() const
{
    return m_item->rows;
}

void SpanPlot::setRows(std::vector<Row> rows, double from, double to, double shift)
{
    const bool isOther = from != m_first || to != m_last;
    m_item->rows = std::move(rows);
    m_item->shift = shift;
    m_shift = shift;
    m_first = from;
    m_last = to;
    m_plot->setVisible(!m_item->rows.empty());
    showVisibleRows();
    if (isOther || m_from >= m_to)
        setRange(from, to);
    m_plot->replot();
    update();
}

/// As many rows as there is room for; the others are scrolled to.
void SpanPlot::showVisibleRows()
{
    const auto count = static_cast<int>(m_item->rows.size());
    const int visible = std::max(1, m_plot->canvas()->height() / rowHeight);
    const QSignalBlocker silent(m_scroll);
    m_scroll->setRange(0, std::max(0, count - visible));
    m_scroll->setPageStep(visible);
    m_scroll->setVisible(count > visible);
    const int first = m_scroll->value();
    QList<double> ticks[QwtScaleDiv::NTickTypes];
    for (int i = first; i < std::min(count, first + visible); ++i)
        ticks[QwtScaleDiv::MajorTick].append(-i);
    // Few rows stay at the top instead of growing.
    m_plot->setAxisScaleDiv(QwtPlot::yLeft, QwtScaleDiv(0.5 - first - visible, 0.5 - first, ticks));
    m_plot->replot();
}

void SpanPlot::setRange(double from, double to)
{
    const double edge = (m_last - m_first) * 0.01 + 1;
    m_from = std::max(from, m_first - edge);
    m_to = std::min(to, m_last + edge);
    constexpr double shortest = 20; // milliseconds
    if (m_to - m_from < shortest)
        m_to = m_from + shortest;
    m_plot->setAxisScale(QwtPlot::xBottom, m_from + m_shift, m_to + m_shift);
    m_plot->replot();
}

void SpanPlot::setCursor(double time)
{
    m_item->cursor = time;
    m_plot->replot();
}

void SpanPlot::clearCursor()
{
    setCursor(std::numeric_limits<double>::quiet_NaN());
}

double SpanPlot::timeAt(int x) const
{
    return m_plot->invTransform(QwtPlot::xBottom, x) - m_shift;
}

bool SpanPlot::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Wheel: {
        const auto* wheel = static_cast<QWheelEvent*>(event);
        if ((wheel->modifiers() & Qt::ControlModifier) == 0) {
            QCoreApplication::sendEvent(m_scroll, event); // scrolls the rows
            return true;
        }
        const double factor = std::pow(0.999, wheel->angleDelta().y());
        const double time = timeAt(wheel->position().toPoint().x());
        setRange(time - (time - m_from) * factor, time + (m_to - time) * factor);
        return true;
    }
    case QEvent::Resize:
        showVisibleRows();
        break;
    case QEvent::MouseButtonPress:
        m_isPressed = true;
        m_pressedAt = static_cast<QMouseEvent*>(event)->pos().x();
        m_dragTime = timeAt(m_pressedAt);
        return true;
    case QEvent::MouseMove:
        if (m_isPressed) {
            const double step = m_dragTime - timeAt(static_cast<QMouseEvent*>(event)->pos().x());
            setRange(m_from + step, m_to + step);
        }
        return true;
    case QEvent::MouseButtonRelease: {
        const QPoint place = static_cast<QMouseEvent*>(event)->pos();
        constexpr int stillAClick = 4;
        m_isPressed = false;
        if (std::abs(place.x() - m_pressedAt) < stillAClick) {
            const double row = -m_plot->invTransform(QwtPlot::yLeft, place.y());
            Q_EMIT clicked(timeAt(place.x()), static_cast<int>(std::lround(row)));
        }
        return true;
    }
    case QEvent::MouseButtonDblClick:
        setRange(m_first, m_last);
        return true;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void SpanPlot::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColours();
}

void SpanPlot::applyColours()
{
    m_item->palette = palette();
    m_plot->setCanvasBackground(palette().color(QPalette::Base));
    m_plot->replot();
}

void SpanPlot::paintEvent(QPaintEvent*)
{
    if (!m_item->rows.empty())
        return;
    QPainter painter(this);
    paintEmptyText(painter, *this, rect(), m_emptyText);
}

} // namespace tqx::view
