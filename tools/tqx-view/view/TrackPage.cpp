#include "view/TrackPage.h"

#include "view/Colours.h"
#include "view/EmptyText.h"
#include "view/TimeAxis.h"

#include "tqx/log/time/GnssTime.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QTextStream>
#include <QVBoxLayout>

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace tqx::view
{

namespace
{

constexpr double calendarShift = 315'964'800'000; // from GNSS time to 1970, in milliseconds

void prepare(QwtPlot& plot, const QString& below, const QString& beside)
{
    plot.setAutoReplot(false);
    qobject_cast<QwtPlotCanvas*>(plot.canvas())->setFrameStyle(QFrame::NoFrame);
    const auto title = [&](int axis, const QString& text) {
        QwtText label(text);
        label.setFont(plot.font());
        plot.setAxisTitle(axis, label);
    };
    title(QwtPlot::xBottom, below);
    title(QwtPlot::yLeft, beside);
}

/// Points as dots, which show a scatter better than a line.
void addDots(QwtPlot& plot, const QString& title, const QVector<QPointF>& dots,
             const QColor& colour)
{
    auto* curve = new QwtPlotCurve(title);
    curve->setStyle(QwtPlotCurve::Dots);
    curve->setPen(colour, 2.4);
    curve->setSamples(dots);
    curve->attach(&plot);
}

QString metres(double value)
{
    constexpr double least = 0.0005; // smaller ones would be shown as a negative zero
    return QLocale().toString(std::abs(value) < least ? 0 : value, 'f', 3);
}

} // namespace

TrackPage::TrackPage(const GnssSurvey& survey, QWidget* parent)
    : ExportPage(parent), m_survey(survey), m_centre(new QLineEdit(this)),
      m_figures(new QLabel(this)), m_plan(new QwtPlot), m_height(new QwtPlot),
      m_plots(new QWidget(this))
{
    auto* label = new QLabel(tr("&Around"), this);
    label->setBuddy(m_centre);
    m_centre->setPlaceholderText(tr("mean of the positions; or latitude, longitude, height"));
    m_centre->setToolTip(tr("Degrees, northern and eastern ones positive, and metres above the "
                            "ellipsoid, as 47.07, 15.45, 412.3; Enter applies it"));
    m_centre->setClearButtonEnabled(true);
    m_centre->setObjectName("centre");
    m_figures->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* bar = new QHBoxLayout;
    bar->addWidget(label);
    bar->addWidget(m_centre, 1);
    bar->addStretch(1);
    bar->addWidget(makeExportButton());
    m_figures->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    prepare(*m_plan, tr("East [m]"), tr("North [m]"));
    prepare(*m_height, tr("GPS time"), tr("Up [m]"));
    useTimeAxis(*m_height);
    m_plan->insertLegend(new QwtLegend, QwtPlot::TopLegend);
    m_plan->canvas()->installEventFilter(this);
    auto* beside = new QHBoxLayout(m_plots);
    beside->setContentsMargins(0, 0, 0, 0);
    beside->addWidget(m_plan, 1);
    beside->addWidget(m_height, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addLayout(bar);
    layout->addWidget(m_figures);
    layout->addWidget(m_plots, 1);
    layout->addStretch(0);
    connect(m_centre, &QLineEdit::editingFinished, this, &TrackPage::showData);
    connect(&m_survey, &GnssSurvey::changed, this, &TrackPage::showData);
    showData();
}

void TrackPage::setHasLog(bool hasLog)
{
    m_hasLog = hasLog;
    showData();
}

QString TrackPage::getFiguresText() const
{
    return m_figures->text();
}

void TrackPage::showData()
{
    const GnssData& known = m_survey.getData();
    m_points.clear();
    m_plots->setVisible(!known.track.empty());
    m_figures->clear();
    update();
    if (known.track.empty())
        return;
    Geodetic centre = meanOf(known.track);
    const QString typed = m_centre->text().trimmed();
    if (!typed.isEmpty() && !parsePlace(typed, centre)) {
        m_figures->setText(
            tr("%1 is not a place; latitude, longitude and height are expected").arg(typed));
        return;
    }
    m_points = localTrack(known.track, centre);
    const TrackFigures figures = figuresOf(m_points);
    m_figures->setText(
        tr("%1 positions of %2; mean E %3, N %4, U %5 m; deviation E %6, N %7, U %8 m; "
           "horizontal RMS %9 m")
            .arg(QLocale().toString(qulonglong{known.positions}), known.trackSource,
                 metres(figures.mean.x), metres(figures.mean.y), metres(figures.mean.z),
                 metres(figures.deviation.x), metres(figures.deviation.y),
                 metres(figures.deviation.z), metres(figures.horizontal)));
    m_figures->setToolTip(m_figures->text());
    showPoints();
}

void TrackPage::showPoints()
{
    if (m_points.empty())
        return;
    std::map<Fix, std::pair<QVector<QPointF>, QVector<QPointF>>> byFix;
    for (const LocalPoint& point : m_points) {
        auto& [plan, height] = byFix[point.fix];
        plan.push_back({point.east, point.north});
        height.push_back({point.time + calendarShift, point.up});
    }
    for (QwtPlot* plot : {m_plan, m_height}) {
        plot->detachItems();
        plot->setCanvasBackground(palette().color(QPalette::Base));
        auto* grid = new QwtPlotGrid;
        grid->setMajorPen(gridColour(palette()), 0, Qt::SolidLine);
        grid->attach(plot);
    }
    for (const auto& [fix, dots] : byFix) {
        const QColor colour = seriesColour(static_cast<int>(fix) - 1, palette());
        addDots(*m_plan, fixName(fix), dots.first, colour);
        addDots(*m_height, fixName(fix), dots.second, colour);
    }
    m_height->replot();
    scalePlan();
}

/// A metre is as long eastwards as northwards.
void TrackPage::scalePlan()
{
    if (m_points.empty())
        return;
    double left = m_points[0].east;
    double right = left;
    double low = m_points[0].north;
    double high = low;
    for (const LocalPoint& point : m_points) {
        left = std::min(left, point.east);
        right = std::max(right, point.east);
        low = std::min(low, point.north);
        high = std::max(high, point.north);
    }
    const double width = std::max(m_plan->canvas()->width(), 1);
    const double height = std::max(m_plan->canvas()->height(), 1);
    constexpr double room = 1.1;
    constexpr double smallest = 1e-3; // metres
    const double perPixel =
        std::max({(right - left) / width, (high - low) / height, smallest / height}) * room;
    const double x = (left + right) / 2;
    const double y = (low + high) / 2;
    m_plan->setAxisScale(QwtPlot::xBottom, x - perPixel * width / 2, x + perPixel * width / 2);
    m_plan->setAxisScale(QwtPlot::yLeft, y - perPixel * height / 2, y + perPixel * height / 2);
    m_plan->replot();
}

std::optional<Exported> TrackPage::getExported()
{
    if (m_points.empty())
        return std::nullopt;
    return Exported{m_figures->text(), size(),
                    [this](QPainter& painter, const QRectF& area) { paintAll(painter, area); },
                    [this](QTextStream& out) { writeTable(out); }};
}

void TrackPage::paintAll(QPainter& painter, const QRectF& area) const
{
    constexpr double edge = 8;
    const double head = 2.0 * fontMetrics().height();
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRectF(edge, 0, area.width() - 2 * edge, head), Qt::AlignCenter,
                     m_figures->text());
    // The same shape as on the screen, for metres of equal length.
    const double height = (area.height() - head) - edge;
    const double width = (area.width() - 3 * edge) / 2;
    renderPlot(*m_plan, painter, QRectF(edge, head, width, height));
    renderPlot(*m_height, painter, QRectF(2 * edge + width, head, width, height));
}

void TrackPage::writeTable(QTextStream& out) const
{
    const std::vector<TrackPoint>& track = m_survey.getData().track;
    out << "time,latitude,longitude,height,east,north,up,fix\n";
    for (size_t i = 0; i < track.size() && i < m_points.size(); ++i) {
        const TrackPoint& place = track[i];
        const LocalPoint& local = m_points[i];
        const std::string time = dateText(static_cast<GnssMillis>(place.time));
        out << QString::fromStdString(time).replace('T', ' ');
        for (const double degrees : {place.latitude, place.longitude})
            out << ',' << QString::number(degrees, 'f', 9);
        for (const double length : {place.height, local.east, local.north, local.up})
            out << ',' << QString::number(length, 'f', 4);
        out << ',' << csvCell(fixName(place.fix)) << '\n';
    }
}

bool TrackPage::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        scalePlan();
    return QWidget::eventFilter(watched, event);
}

void TrackPage::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showPoints();
}

void TrackPage::paintEvent(QPaintEvent*)
{
    if (!m_survey.getData().track.empty())
        return;
    QPainter painter(this);
    paintEmptyText(painter, *this, rect(),
                   !m_hasLog              ? tr("Open a log to see its positions.")
                   : m_survey.isReading() ? tr("Reading the log…")
                                          : tr("This log has no positions."));
}

} // namespace tqx::view
