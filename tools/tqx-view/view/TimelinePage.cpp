#include "view/TimelinePage.h"

#include "view/SpanPlot.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSplitter>
#include <QTextStream>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tqx::view
{

namespace
{

enum Column { Time, Duration, What, Details, columnCount };

constexpr int indexRole = Qt::UserRole;

QString durationText(double millis)
{
    const QLocale locale;
    if (millis < 60'000)
        return QObject::tr("%1 s").arg(locale.toString(millis / 1000, 'f', 3));
    const auto seconds = static_cast<qint64>(millis / 1000);
    return QString("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QChar('0'))
        .arg(seconds % 60, 2, 10, QChar('0'));
}

} // namespace

TimelinePage::TimelinePage(QWidget* parent)
    : ExportPage(parent), m_summary(new QLabel(this)), m_plot(new SpanPlot(this)),
      m_faults(new QTreeWidget(this))
{
    m_faults->setColumnCount(columnCount);
    m_faults->setHeaderLabels({tr("From (GPS)"), tr("Duration"), tr("What"), tr("Details")});
    m_faults->headerItem()->setTextAlignment(Duration, Qt::AlignRight | Qt::AlignVCenter);
    m_faults->setRootIsDecorated(false);
    m_faults->setUniformRowHeights(true);
    m_faults->setAlternatingRowColors(true);
    m_faults->setAccessibleName(tr("Outages and damage"));
    m_faults->setToolTip(tr("Enter or a double click shows the messages there"));
    const int width = fontMetrics().averageCharWidth();
    m_faults->header()->resizeSection(Time, 28 * width);
    m_faults->header()->resizeSection(Duration, 14 * width);
    m_faults->header()->resizeSection(What, 34 * width);
    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->addWidget(m_plot);
    splitter->addWidget(m_faults);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({540, 200});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    auto* bar = new QHBoxLayout;
    bar->addWidget(m_summary, 1);
    bar->addWidget(makeExportButton());
    layout->addLayout(bar);
    layout->addWidget(splitter, 1);
    m_plot->setToolTip(tr("Ctrl and the wheel zoom, dragging moves, a click shows the messages"));
    connect(&m_timeline, &Timeline::changed, this, &TimelinePage::showData);
    connect(&m_timeline, &Timeline::failed, this, &TimelinePage::failed);
    connect(m_plot, &SpanPlot::clicked, this,
            [this](double time) { Q_EMIT timeWanted(static_cast<qlonglong>(time)); });
    connect(m_faults, &QTreeWidget::itemActivated, this, &TimelinePage::chooseFault);
    showData();
}

TimelinePage::~TimelinePage() = default;

void TimelinePage::setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued)
{
    m_log = log;
    m_isRead = log == nullptr;
    if (!isContinued)
        m_timeline.setLog(nullptr);
    if (isVisible())
        readIfNeeded();
    showData();
}

void TimelinePage::readIfNeeded()
{
    if (m_isRead)
        return;
    m_isRead = true;
    m_timeline.setLog(m_log, true); // another log has been cleared away
}

void TimelinePage::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    readIfNeeded();
}

void TimelinePage::showData()
{
    m_plot->setEmptyText(!m_log ? tr("Open a log to see when its messages come and where they are "
                                     "missing.")
                         : m_timeline.isReading() ? tr("Reading the log…")
                                                  : tr("This log has no messages with a time."));
    showRows();
    showFaults();
}

void TimelinePage::showRows()
{
    std::vector<SpanPlot::Row> rows;
    const TimelineData& read = m_timeline.getData();
    const bool hasTimes = m_log && m_log->getFirstTime() && m_log->getLastTime();
    if (!hasTimes) {
        m_plot->setRows({}, 0, 1, 0);
        return;
    }
    for (const TimelineRow& row : read.rows) {
        SpanPlot::Row shown{row.name, {}};
        for (const TimeSpan& span : row.present)
            shown.spans.push_back({span.from, span.to});
        for (const TimeSpan& span : row.missing)
            shown.spans.push_back({span.from, span.to, SpanPlot::Kind::Fault});
        rows.push_back(std::move(shown));
        if (rows.size() > 1)
            continue;
        SpanPlot::Row damage{tr("Damage"), {}};
        for (const TimelineFault& fault : read.faults) {
            if (fault.kind == TimelineFault::Kind::Damage)
                damage.spans.push_back({fault.time, fault.time, SpanPlot::Kind::Fault});
        }
        rows.push_back(std::move(damage));
    }
    m_plot->setRows(std::move(rows), static_cast<double>(*m_log->getFirstTime()),
                    static_cast<double>(*m_log->getLastTime()),
                    static_cast<double>(m_log->getCalendarShift()));
}

void TimelinePage::showFaults()
{
    m_faults->clear();
    const TimelineData& read = m_timeline.getData();
    int outages = 0;
    int damages = 0;
    QList<QTreeWidgetItem*> items;
    for (size_t i = 0; i < read.faults.size(); ++i) {
        const TimelineFault& fault = read.faults[i];
        const bool isDamage = fault.kind == TimelineFault::Kind::Damage;
        ++(isDamage ? damages : outages);
        auto* item = new QTreeWidgetItem;
        item->setText(Time, m_log->timeText(static_cast<int64_t>(fault.time), false));
        if (!isDamage)
            item->setText(Duration, durationText(fault.duration));
        item->setTextAlignment(Duration, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(What, isDamage               ? tr("Damage")
                            : fault.type.isEmpty() ? tr("Outage of all messages")
                                                   : tr("Outage of %1").arg(fault.type));
        item->setText(
            Details,
            isDamage
                ? tr("at byte %1: %2").arg(QLocale().toString(qulonglong{fault.offset}), fault.text)
                : fault.text);
        item->setData(0, indexRole, static_cast<qulonglong>(i));
        items += item;
    }
    m_faults->addTopLevelItems(items);
    QString text = tr("Outages: %1, damaged places: %2").arg(outages).arg(damages);
    if (read.hasMoreFaults)
        text += tr(", and more that are not listed");
    const bool isKnown = m_log && !read.rows.empty();
    m_summary->setText(isKnown ? text : QString());
    m_faults->setVisible(isKnown);
}

std::optional<Exported> TimelinePage::getExported()
{
    if (!m_log || m_timeline.getData().rows.empty())
        return std::nullopt;
    return Exported{tr("Outages and damage of %1").arg(m_log->getName()), m_plot->size(),
                    [this](QPainter& painter, const QRectF& area) {
                        renderPlot(m_plot->getPlot(), painter, area.adjusted(8, 8, -8, -8));
                    },
                    [this](QTextStream& out) { writeTable(out); }};
}

void TimelinePage::writeTable(QTextStream& out) const
{
    out << "time,seconds,kind,type,offset,details\n";
    for (const TimelineFault& fault : m_timeline.getData().faults) {
        const bool isDamage = fault.kind == TimelineFault::Kind::Damage;
        out << m_log->timeText(static_cast<int64_t>(fault.time), false) << ','
            << (isDamage ? QString() : QString::number(fault.duration / 1000, 'f', 3)) << ','
            << (isDamage ? "damage" : "outage") << ',' << csvCell(fault.type) << ','
            << (isDamage ? QString::number(fault.offset) : QString()) << ',' << csvCell(fault.text)
            << '\n';
    }
}

void TimelinePage::chooseFault(QTreeWidgetItem* item)
{
    const size_t index = item->data(0, indexRole).toULongLong();
    const TimelineFault& fault = m_timeline.getData().faults[index];
    if (fault.kind == TimelineFault::Kind::Damage) {
        Q_EMIT offsetWanted(fault.offset);
    } else {
        Q_EMIT timeWanted(static_cast<qlonglong>(fault.time));
    }
}

} // namespace tqx::view
