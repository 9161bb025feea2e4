#include "view/SkyPage.h"

#include "view/SkyPlot.h"
#include "view/SpanPlot.h"
#include "view/StrengthBars.h"

#include "tqx/log/time/GnssTime.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSlider>
#include <QSplitter>
#include <QTextStream>
#include <QVBoxLayout>

#include <algorithm>
#include <map>

namespace tqx::view
{

namespace
{

constexpr double calendarShift = 315'964'800'000; // from GNSS time to 1970, in milliseconds

QString epochText(double time)
{
    return QString::fromStdString(dateText(static_cast<GnssMillis>(time))).replace('T', ' ');
}

} // namespace

SkyPage::SkyPage(const GnssSurvey& survey, QWidget* parent)
    : ExportPage(parent), m_survey(survey), m_sky(new SkyPlot(this)),
      m_bars(new StrengthBars(this)), m_visibility(new SpanPlot(this)),
      m_slider(new QSlider(Qt::Horizontal, this)), m_time(new QLabel(this))
{
    auto* label = new QLabel(tr("Ti&me"), this);
    label->setBuddy(m_slider);
    auto* bar = new QHBoxLayout;
    bar->addWidget(label);
    bar->addWidget(m_slider, 1);
    bar->addWidget(m_time);
    bar->addWidget(makeExportButton());
    m_slider->setAccessibleName(tr("Time"));
    auto* upper = new QSplitter(Qt::Horizontal, this);
    upper->addWidget(m_sky);
    upper->addWidget(m_bars);
    upper->setStretchFactor(0, 2);
    upper->setStretchFactor(1, 3);
    upper->setSizes({480, 900});
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(upper);
    splitter->addWidget(m_visibility);
    splitter->setSizes({440, 300});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addLayout(bar);
    layout->addWidget(splitter, 1);
    connect(m_slider, &QSlider::valueChanged, this, &SkyPage::showEpoch);
    connect(m_visibility, &SpanPlot::clicked, this, &SkyPage::setTime);
    connect(&m_survey, &GnssSurvey::changed, this, &SkyPage::showData);
    showData();
}

void SkyPage::setHasLog(bool hasLog)
{
    m_hasLog = hasLog;
    showData();
}

void SkyPage::showData()
{
    const GnssData& known = m_survey.getData();
    const auto text = [&](const QString& missing) {
        return !m_hasLog              ? tr("Open a log to see its satellites.")
               : m_survey.isReading() ? tr("Reading the log…")
                                      : missing;
    };
    m_sky->setEmptyText(text(tr("This log has no directions of satellites.")));
    m_bars->setEmptyText(text(tr("This log has no measurements.")));
    m_visibility->setEmptyText(text(tr("This log has no measurements.")));
    m_sky->setEpochs(&known.directions);
    std::vector<SpanPlot::Row> rows;
    double from = 0;
    double to = 1;
    for (const Visibility& signal : known.visibility) {
        const QString name = QString::fromStdString(signal.satellite.text()) + ' ' +
                             signal.code.band + signal.code.attribute;
        SpanPlot::Row row{name, {}};
        const auto colour = static_cast<int>(systemIndex(signal.satellite.system));
        for (const Visibility::Span& span : signal.spans) {
            row.spans.push_back({span.from, span.to, SpanPlot::Kind::Coloured, colour});
            from = from == 0 ? span.from : std::min(from, span.from);
            to = std::max(to, span.to);
        }
        rows.push_back(std::move(row));
    }
    m_visibility->setRows(std::move(rows), from, to, calendarShift);
    const auto count = static_cast<int>(known.strengths.size());
    m_slider->setEnabled(count > 0);
    m_slider->setRange(0, std::max(0, count - 1));
    m_slider->setPageStep(std::max(1, count / 20));
    showEpoch(m_slider->value());
}

void SkyPage::setTime(double time)
{
    const std::vector<SkyEpoch>& epochs = m_survey.getData().strengths;
    const auto found =
        std::lower_bound(epochs.begin(), epochs.end(), time,
                         [](const SkyEpoch& epoch, double wanted) { return epoch.time < wanted; });
    m_slider->setValue(static_cast<int>(found - epochs.begin()));
}

void SkyPage::showEpoch(int place)
{
    const std::vector<SkyEpoch>& epochs = m_survey.getData().strengths;
    if (epochs.empty()) {
        m_bars->setEpoch(nullptr);
        m_visibility->clearCursor();
        m_time->clear();
        return;
    }
    const SkyEpoch& epoch = epochs[static_cast<size_t>(place)];
    m_bars->setEpoch(&epoch);
    m_sky->setTime(epoch.time);
    m_visibility->setCursor(epoch.time);
    m_time->setText(tr("%1 GPS").arg(epochText(epoch.time)));
}

std::optional<Exported> SkyPage::getExported()
{
    const GnssData& known = m_survey.getData();
    if (known.strengths.empty() && known.directions.empty())
        return std::nullopt;
    return Exported{tr("Satellites at %1").arg(m_time->text()), size(),
                    [this](QPainter& painter, const QRectF& area) { paintAll(painter, area); },
                    [this](QTextStream& out) { writeTable(out); }};
}

/// As in the window, with the time in place of the slider.
void SkyPage::paintAll(QPainter& painter, const QRectF& area) const
{
    constexpr double edge = 8;
    const double head = 2.0 * fontMetrics().height();
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRectF(0, 0, area.width(), head), Qt::AlignCenter, m_time->text());
    const double half = head + (area.height() - head) * 0.58;
    const QRectF sky(edge, head, std::min(half - head, area.width() / 2), half - head);
    m_sky->paint(painter, sky);
    const QRectF bars(QPointF(sky.right() + edge, head), QPointF(area.right() - edge, half));
    renderPlot(m_bars->getPlot(), painter, bars);
    const QRectF below(QPointF(edge, half + edge), QPointF(area.right() - edge, area.bottom() - 4));
    renderPlot(m_visibility->getPlot(), painter, below);
}

/// The strengths of all epochs that are kept, with where their satellites are.
void SkyPage::writeTable(QTextStream& out) const
{
    const GnssData& known = m_survey.getData();
    out << "time,satellite,signal,cn0,azimuth,elevation\n";
    size_t next = 0;
    std::map<SatelliteId, Direction> directions;
    for (const SkyEpoch& epoch : known.strengths) {
        for (; next < known.directions.size() && known.directions[next].time <= epoch.time;
             ++next) {
            directions.clear();
            for (const Direction& direction : known.directions[next].directions)
                directions.emplace(direction.satellite, direction);
        }
        const QString time = epochText(epoch.time);
        for (const SignalStrength& signal : epoch.signals) {
            out << time << ',' << QString::fromStdString(signal.satellite.text()) << ','
                << signal.code.band << signal.code.attribute << ',' << signal.cn0 << ',';
            const auto seen = directions.find(signal.satellite);
            if (seen == directions.end()) {
                out << ",\n";
            } else {
                out << seen->second.azimuth << ',' << seen->second.elevation << '\n';
            }
        }
    }
}

} // namespace tqx::view
