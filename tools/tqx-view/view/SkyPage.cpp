#include "view/SkyPage.h"

#include "view/SkyPlot.h"
#include "view/SpanPlot.h"
#include "view/StrengthBars.h"

#include "tqx/log/time/GnssTime.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

namespace tqx::view
{

namespace
{

constexpr double calendarShift = 315'964'800'000; // from GNSS time to 1970, in milliseconds

} // namespace

SkyPage::SkyPage(const GnssSurvey& survey, QWidget* parent)
    : QWidget(parent), m_survey(survey), m_sky(new SkyPlot(this)), m_bars(new StrengthBars(this)),
      m_visibility(new SpanPlot(this)), m_slider(new QSlider(Qt::Horizontal, this)),
      m_time(new QLabel(this))
{
    auto* label = new QLabel(tr("Ti&me"), this);
    label->setBuddy(m_slider);
    auto* bar = new QHBoxLayout;
    bar->addWidget(label);
    bar->addWidget(m_slider, 1);
    bar->addWidget(m_time);
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
    QString text = QString::fromStdString(dateText(static_cast<GnssMillis>(epoch.time)));
    m_time->setText(tr("%1 GPS").arg(text.replace('T', ' ')));
}

} // namespace tqx::view
