#include "view/PlotPanel.h"

#include "view/Colours.h"
#include "view/ExportPage.h"
#include "view/SeriesCurve.h"
#include "view/TimeAxis.h"

#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMouseEvent>
#include <QRubberBand>
#include <QToolButton>
#include <QVBoxLayout>

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tqx::view
{

namespace
{

// Nobody can distinguish more curves in one plot.
constexpr size_t mostCurves = 128;
constexpr int timeLabelOverhang = 44;

QString numberText(double value)
{
    return QLocale().toString(value, 'g', 10);
}

} // namespace

PlotPanel::PlotPanel(const QString& expression, QString choice, QWidget* parent)
    : QWidget(parent), m_field(expression), m_choice(std::move(choice)), m_title(new QLabel(this)),
      m_values(new QLabel(this)), m_choices(new QComboBox(this)), m_plot(new QwtPlot(this)),
      m_cursor(new QwtPlotMarker)
{
    auto* close = new QToolButton(this);
    close->setText(tr("×"));
    close->setAutoRaise(true);
    close->setToolTip(tr("Remove this plot"));
    connect(close, &QToolButton::clicked, this, &PlotPanel::closeWanted);
    auto* header = new QHBoxLayout;
    header->setContentsMargins(6, 2, 2, 0);
    header->setSpacing(10);
    header->addWidget(m_title);
    header->addWidget(m_choices);
    header->addWidget(m_values, 1);
    header->addWidget(close);
    m_values->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_values->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_values->setObjectName("plotValues");
    m_choices->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_choices->setMaxVisibleItems(30);
    m_choices->setToolTip(tr("Which of the series of the field to show"));
    m_choices->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(header);
    layout->addWidget(m_plot, 1);
    setMinimumHeight(120);

    useTimeAxis(*m_plot);
    m_plot->setAxisMaxMajor(QwtPlot::yLeft, 6);
    auto* grid = new QwtPlotGrid;
    grid->enableXMin(false);
    grid->attach(m_plot);
    m_cursor->setLineStyle(QwtPlotMarker::VLine);
    m_cursor->setVisible(false);
    m_cursor->attach(m_plot);
    m_plot->setAutoReplot(false);
    auto* canvas = qobject_cast<QwtPlotCanvas*>(m_plot->canvas());
    canvas->setFrameStyle(QFrame::NoFrame);
    canvas->setMouseTracking(true);
    canvas->setCursor(Qt::CrossCursor);
    canvas->installEventFilter(this);
    m_band = new QRubberBand(QRubberBand::Rectangle, canvas);

    connect(m_choices, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        m_choice = m_choices->itemData(index).toString();
        updateCurves();
        Q_EMIT changed();
    });
    constexpr int updateMillis = 200;
    m_updates.setSingleShot(true);
    m_updates.setInterval(updateMillis);
    connect(&m_updates, &QTimer::timeout, this, &PlotPanel::fieldChanged);
    connect(&m_field, &PlotField::changed, this, [this] {
        if (!m_updates.isActive())
            m_updates.start();
    });
    connect(&m_field, &PlotField::failed, this, &PlotPanel::failed);
    applyColours();
    fieldChanged();
}

PlotPanel::~PlotPanel()
{
    m_field.disconnect(this);
}

void PlotPanel::setChoice(const QString& choice)
{
    m_choice = choice;
    updateChoices();
    updateCurves();
}

void PlotPanel::setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued)
{
    m_shift = log ? static_cast<double>(log->getCalendarShift()) : 0;
    m_field.setLog(log, isContinued);
}

void PlotPanel::fieldChanged()
{
    m_title->setText("<b>" + m_field.getTitle().toHtmlEscaped() + "</b>");
    updateChoices();
    updateCurves();
    Q_EMIT changed();
}

void PlotPanel::updateChoices()
{
    const std::vector<PlotSeries>& all = m_field.getSeries();
    QStringList names;
    for (const PlotSeries& series : all)
        names += series.getName();
    names.sort();
    const bool isNew = m_choices->count() != names.size() + 1;
    if (isNew) {
        m_choices->clear();
        m_choices->addItem(tr("All %1").arg(names.size()), QString());
        for (const QString& name : names)
            m_choices->addItem(name, name);
    }
    // A choice that does not exist yet may still be read.
    m_choices->setCurrentIndex(std::max(0, m_choices->findData(m_choice)));
    m_choices->setVisible(names.size() > 1);
}

std::vector<const PlotSeries*> PlotPanel::getShown() const
{
    std::vector<const PlotSeries*> shown;
    for (const PlotSeries& series : m_field.getSeries()) {
        if ((m_choice.isEmpty() || series.getName() == m_choice) && shown.size() < mostCurves)
            shown.push_back(&series);
    }
    return shown;
}

void PlotPanel::setRange(double from, double to)
{
    m_from = from;
    m_to = to;
    updateCurves();
}

void PlotPanel::updateCurves()
{
    const std::vector<const PlotSeries*> shown = getShown();
    while (m_curves.size() > shown.size()) {
        m_curves.back()->detach();
        delete m_curves.back();
        m_curves.pop_back();
    }
    while (m_curves.size() < shown.size()) {
        m_curves.push_back(new SeriesCurve);
        m_curves.back()->attach(m_plot);
    }
    double least = std::numeric_limits<double>::max();
    double greatest = std::numeric_limits<double>::lowest();
    // Many curves hide each other: coarser ones look the same and draw faster.
    const bool areMany = shown.size() > 8;
    const int width = std::max(m_plot->canvas()->width(), 100) / (areMany ? 4 : 1);
    for (size_t i = 0; i < shown.size(); ++i) {
        std::vector<size_t> breaks;
        const std::vector<PlotPoint> points = shown[i]->visible(m_from, m_to, width, breaks);
        for (const PlotPoint& point : points) {
            least = std::min(least, point.value);
            greatest = std::max(greatest, point.value);
        }
        m_curves[i]->setPoints(points, breaks, m_shift, width);
        m_curves[i]->setColour(seriesColour(static_cast<int>(i), palette()), areMany);
    }
    m_plot->setAxisScale(QwtPlot::xBottom, m_from + m_shift, m_to + m_shift);
    if (!m_isValueRangeSet && least <= greatest) {
        const double span = greatest - least;
        const double edge = span > 0 ? 0.05 * span : std::max(1.0, std::abs(greatest)) * 0.01;
        m_plot->setAxisScale(QwtPlot::yLeft, least - edge, greatest + edge);
    }
    m_plot->replot();
    const bool isEmpty = least > greatest;
    if (isEmpty) {
        m_values->setText(m_field.isReading() ? tr("Reading…") : tr("No values here"));
    } else if (!m_cursor->isVisible()) {
        m_values->setText(m_field.isReading() ? tr("Reading…") : QString());
    }
}

void PlotPanel::setTimeAxisVisible(bool isVisible)
{
    QwtScaleWidget& axis = *m_plot->axisWidget(QwtPlot::xBottom);
    axis.scaleDraw()->enableComponent(QwtAbstractScaleDraw::Labels, isVisible);
    // Fixed room for labels beyond the ends, so that all plots are equally wide.
    axis.setMinBorderDist(timeLabelOverhang, timeLabelOverhang);
    m_plot->updateLayout();
}

int PlotPanel::getLabelWidth() const
{
    const QwtScaleWidget& labels = *m_plot->axisWidget(QwtPlot::yLeft);
    return labels.scaleDraw()->maxLabelWidth(labels.font());
}

void PlotPanel::setLabelWidth(int width)
{
    QwtScaleDraw& labels = *m_plot->axisWidget(QwtPlot::yLeft)->scaleDraw();
    labels.setMinimumExtent(width + labels.spacing() + labels.maxTickLength());
    m_plot->updateLayout();
}

void PlotPanel::setCursor(double time)
{
    m_cursor->setXValue(time + m_shift);
    m_cursor->setVisible(true);
    QStringList texts;
    const std::vector<const PlotSeries*> shown = getShown();
    constexpr size_t mostTexts = 6;
    for (size_t i = 0; i < shown.size() && i < mostTexts; ++i) {
        const std::optional<PlotPoint> point = shown[i]->nearest(time);
        if (!point)
            continue;
        QString text = numberText(point->value);
        if (!m_field.getUnit().isEmpty())
            text += ' ' + m_field.getUnit();
        if (shown.size() > 1)
            text.prepend(shown[i]->getName() + ": ");
        texts +=
            QString("<font color=\"%1\">%2</font>")
                .arg(seriesColour(static_cast<int>(i), palette()).name(), text.toHtmlEscaped());
    }
    if (shown.size() > mostTexts)
        texts += tr("and %1 more").arg(shown.size() - mostTexts);
    m_values->setText(texts.join("&nbsp;&nbsp; "));
    m_plot->replot();
}

void PlotPanel::clearCursor()
{
    m_cursor->setVisible(false);
    m_values->clear();
    m_plot->replot();
}

void PlotPanel::render(QPainter& painter, const QRectF& area)
{
    m_plot->setTitle(m_choice.isEmpty() ? m_field.getTitle()
                                        : m_field.getTitle() + "  " + m_choice);
    renderPlot(*m_plot, painter, area);
    m_plot->setTitle(QString());
}

double PlotPanel::timeAt(int x) const
{
    return m_plot->invTransform(QwtPlot::xBottom, x) - m_shift;
}

void PlotPanel::zoomValues(double factor)
{
    const QwtScaleDiv scale = m_plot->axisScaleDiv(QwtPlot::yLeft);
    const double centre = (scale.lowerBound() + scale.upperBound()) / 2;
    const double half = (scale.upperBound() - scale.lowerBound()) / 2 * factor;
    m_isValueRangeSet = true;
    m_plot->setAxisScale(QwtPlot::yLeft, centre - half, centre + half);
    m_plot->replot();
}

/// From where it was begun; over the whole height as long as it is nearly level.
QRect PlotPanel::bandTo(const QPoint& place) const
{
    constexpr int level = 12; // pixels
    const QRect canvas = m_plot->canvas()->rect();
    QRect band = QRect(m_bandStart, place).normalized();
    if (band.height() < level) {
        band.setTop(canvas.top());
        band.setBottom(canvas.bottom());
    }
    return band & canvas;
}

void PlotPanel::zoomTo(const QRect& band)
{
    constexpr int stillAClick = 4; // pixels
    if (band.width() < stillAClick)
        return;
    if (band.height() < m_plot->canvas()->height()) {
        m_isValueRangeSet = true;
        m_plot->setAxisScale(QwtPlot::yLeft, m_plot->invTransform(QwtPlot::yLeft, band.bottom()),
                             m_plot->invTransform(QwtPlot::yLeft, band.top()));
    }
    Q_EMIT rangeWanted(timeAt(band.left()), timeAt(band.right()));
}

bool PlotPanel::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::Wheel: {
        const auto* wheel = static_cast<QWheelEvent*>(event);
        const double factor = std::pow(0.999, wheel->angleDelta().y());
        if ((wheel->modifiers() & Qt::ControlModifier) != 0) {
            zoomValues(factor);
        } else {
            const double time = timeAt(wheel->position().toPoint().x());
            Q_EMIT rangeWanted(time - (time - m_from) * factor, time + (m_to - time) * factor);
        }
        return true;
    }
    case QEvent::MouseButtonPress: {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        const bool isLeft = mouse->button() == Qt::LeftButton;
        const bool isShifted = (mouse->modifiers() & Qt::ShiftModifier) != 0;
        m_isDragging = isLeft && !isShifted;
        m_dragTime = timeAt(mouse->pos().x());
        m_bandStart = mouse->pos();
        if (mouse->button() == Qt::RightButton || (isLeft && isShifted))
            m_band->show();
        m_band->setGeometry(bandTo(m_bandStart));
        return true;
    }
    case QEvent::MouseMove: {
        const QPoint place = static_cast<QMouseEvent*>(event)->pos();
        const double time = timeAt(place.x());
        if (m_band->isVisible()) {
            m_band->setGeometry(bandTo(place));
        } else if (m_isDragging) {
            const double step = m_dragTime - time;
            Q_EMIT rangeWanted(m_from + step, m_to + step);
        } else {
            Q_EMIT cursorMoved(time);
        }
        return true;
    }
    case QEvent::MouseButtonRelease:
        m_isDragging = false;
        if (m_band->isVisible()) {
            m_band->hide();
            zoomTo(bandTo(static_cast<QMouseEvent*>(event)->pos()));
        }
        return true;
    case QEvent::MouseButtonDblClick:
        Q_EMIT wholeWanted();
        return true;
    case QEvent::Leave:
        Q_EMIT cursorLeft();
        break;
    case QEvent::Resize:
        updateCurves();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void PlotPanel::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColours();
}

void PlotPanel::applyColours()
{
    m_plot->setCanvasBackground(palette().color(QPalette::Base));
    for (QwtPlotItem* item : m_plot->itemList(QwtPlotItem::Rtti_PlotGrid))
        static_cast<QwtPlotGrid*>(item)->setMajorPen(gridColour(palette()), 0, Qt::SolidLine);
    m_cursor->setLinePen(quietColour(palette()), 0, Qt::DashLine);
    updateCurves();
}

} // namespace tqx::view
