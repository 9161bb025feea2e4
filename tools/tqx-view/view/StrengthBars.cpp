#include "view/StrengthBars.h"

#include "view/Colours.h"
#include "view/EmptyText.h"

#include <QEvent>
#include <QPainter>
#include <QVBoxLayout>

#include <qwt_column_symbol.h>
#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_multi_barchart.h>
#include <qwt_scale_draw.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace tqx::view
{

namespace
{

constexpr double highest = 60; // dB-Hz

/// Satellites below the bars, upright.
class SatelliteNames : public QwtScaleDraw
{
public:
    explicit SatelliteNames(QStringList names) : m_names(std::move(names))
    {
        setLabelRotation(-90);
        setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        enableComponent(Ticks, false);
    }

    QwtText label(double value) const override
    {
        const long place = std::lround(value);
        return QwtText(place >= 0 && place < m_names.size() ? m_names[static_cast<int>(place)]
                                                            : QString());
    }

private:
    QStringList m_names;
};

} // namespace

StrengthBars::StrengthBars(QWidget* parent) : QWidget(parent), m_plot(new QwtPlot(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_plot);
    m_plot->setAutoReplot(false);
    m_plot->insertLegend(new QwtLegend, QwtPlot::TopLegend);
    auto* canvas = qobject_cast<QwtPlotCanvas*>(m_plot->canvas());
    canvas->setFrameStyle(QFrame::NoFrame);
    QwtText title(tr("C/N0 [dB-Hz]"));
    title.setFont(font());
    m_plot->setAxisTitle(QwtPlot::yLeft, title);
    m_plot->setAxisScale(QwtPlot::yLeft, 0, highest, 10);
    m_plot->hide();
}

void StrengthBars::setEmptyText(const QString& text)
{
    m_emptyText = text;
    update();
}

void StrengthBars::setEpoch(const SkyEpoch* epoch)
{
    m_epoch = epoch ? *epoch : SkyEpoch{0, {}};
    showEpoch();
}

void StrengthBars::showEpoch()
{
    m_plot->setVisible(!m_epoch.signals.empty());
    update();
    if (m_epoch.signals.empty())
        return;
    std::set<SatelliteId> satellites;
    std::set<char> bands;
    for (const SignalStrength& signal : m_epoch.signals) {
        satellites.insert(signal.satellite);
        bands.insert(signal.code.band);
    }
    QStringList names;
    QList<QwtText> titles;
    std::map<SatelliteId, int> places;
    // In the order in which files list the systems.
    for (const char* system = systemLetters; *system != 0; ++system) {
        for (const SatelliteId& satellite : satellites) {
            if (satellite.system != *system)
                continue;
            places[satellite] = names.size();
            names += QString::fromStdString(satellite.text());
        }
    }
    for (const char band : bands)
        titles += QwtText(tr("band %1").arg(QChar(band)));
    QVector<QVector<double>> bars(names.size(), QVector<double>(titles.size(), 0));
    for (const SignalStrength& signal : m_epoch.signals) {
        const auto bar =
            static_cast<int>(std::distance(bands.begin(), bands.find(signal.code.band)));
        double& value = bars[places[signal.satellite]][bar];
        value = std::max(value, static_cast<double>(signal.cn0));
    }
    m_plot->detachItems();
    auto* grid = new QwtPlotGrid;
    grid->enableX(false);
    grid->setMajorPen(gridColour(palette()), 0, Qt::SolidLine);
    grid->attach(m_plot);
    auto* chart = new QwtPlotMultiBarChart;
    chart->setBarTitles(titles);
    int number = 0;
    for (const char band : bands) {
        auto* symbol = new QwtColumnSymbol(QwtColumnSymbol::Box);
        symbol->setLineWidth(0);
        symbol->setFrameStyle(QwtColumnSymbol::NoFrame);
        symbol->setPalette(QPalette(seriesColour(band - '1', palette())));
        chart->setSymbol(number++, symbol);
    }
    chart->setSamples(bars);
    chart->setSpacing(3);
    chart->setMargin(1);
    chart->attach(m_plot);
    QList<double> ticks[QwtScaleDiv::NTickTypes];
    for (int i = 0; i < names.size(); ++i)
        ticks[QwtScaleDiv::MajorTick].append(i);
    m_plot->setAxisScaleDraw(QwtPlot::xBottom, new SatelliteNames(names));
    m_plot->setAxisScaleDiv(QwtPlot::xBottom, QwtScaleDiv(-0.6, names.size() - 0.4, ticks));
    m_plot->setCanvasBackground(palette().color(QPalette::Base));
    m_plot->replot();
}

void StrengthBars::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showEpoch();
}

void StrengthBars::paintEvent(QPaintEvent*)
{
    if (!m_epoch.signals.empty())
        return;
    QPainter painter(this);
    paintEmptyText(painter, *this, rect(), m_emptyText);
}

} // namespace tqx::view
