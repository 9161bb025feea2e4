#include "view/PlotPage.h"

#include "view/EmptyText.h"
#include "view/PlotPanel.h"

#include <QCompleter>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStringListModel>
#include <QTextStream>
#include <QVBoxLayout>

#include <algorithm>

namespace tqx::view
{

PlotPage::PlotPage(QWidget* parent)
    : ExportPage(parent), m_name(new QLineEdit(this)), m_names(new QStringListModel(this)),
      m_time(new QLabel(this)), m_stack(new QSplitter(Qt::Vertical, this))
{
    setFocusPolicy(Qt::StrongFocus);
    auto* completer = new QCompleter(m_names, this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    completer->setMaxVisibleItems(16);
    m_name->setCompleter(completer);
    m_name->setObjectName("plotName");
    m_name->setClearButtonEnabled(true);
    m_name->setPlaceholderText(tr("type and field"));
    auto* label = new QLabel(tr("&Add a field"), this);
    label->setBuddy(m_name);
    auto* whole = new QPushButton(tr("Show &All"), this);
    m_time->setTextInteractionFlags(Qt::NoTextInteraction);
    auto* bar = new QHBoxLayout;
    bar->addWidget(label);
    bar->addWidget(m_name, 1);
    bar->addWidget(m_time, 1);
    bar->addWidget(whole);
    bar->addWidget(makeExportButton());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addLayout(bar);
    layout->addWidget(m_stack, 1);
    m_stack->setChildrenCollapsible(false);
    m_stack->hide();
    layout->addStretch(0);
    m_time->setAlignment(Qt::AlignCenter);
    connect(m_name, &QLineEdit::returnPressed, this, &PlotPage::addTyped);
    connect(whole, &QPushButton::clicked, this, &PlotPage::showAll);
}

PlotPage::~PlotPage()
{
    for (PlotPanel* panel : m_panels)
        panel->disconnect(this);
}

void PlotPage::setLog(const std::shared_ptr<const MessageLog>& log, bool isContinued)
{
    const size_t typesBefore = m_log ? m_log->getTypes().size() : 0;
    m_log = log;
    if (!isContinued || log->getTypes().size() != typesBefore) {
        QStringList names;
        if (log) {
            for (const QString& expression : plottableFields(*log))
                names += expression.section(':', 1);
        }
        m_names->setStringList(names);
        m_name->setPlaceholderText(names.isEmpty() ? tr("type and field")
                                                   : tr("type and field, as %1").arg(names.last()));
    }
    for (PlotPanel* panel : m_panels)
        panel->setLog(log, isContinued);
    if (m_isWhole || !isContinued)
        showWhole();
    update();
}

void PlotPage::add(const QString& expression, const QString& choice)
{
    auto* panel = new PlotPanel(expression, choice, m_stack);
    m_panels.push_back(panel);
    m_stack->addWidget(panel);
    m_stack->show();
    connect(panel, &PlotPanel::closeWanted, this, [this, panel] { remove(panel); });
    connect(panel, &PlotPanel::changed, this, &PlotPage::panelChanged);
    connect(panel, &PlotPanel::rangeWanted, this, &PlotPage::setRange);
    connect(panel, &PlotPanel::wholeWanted, this, &PlotPage::showAll);
    connect(panel, &PlotPanel::cursorMoved, this, &PlotPage::showCursor);
    connect(panel, &PlotPanel::cursorLeft, this, &PlotPage::hideCursor);
    connect(panel, &PlotPanel::failed, this, &PlotPage::failed);
    panel->setLog(m_log, false);
    panel->setRange(m_from, m_to);
    arrange();
    update();
}

void PlotPage::addTyped()
{
    const QString name = m_name->text().trimmed();
    if (name.isEmpty() || !m_log)
        return;
    for (const QString& expression : plottableFields(*m_log)) {
        if (expression.section(':', 1).compare(name, Qt::CaseInsensitive) == 0) {
            add(expression, {});
            m_name->clear();
            setFocus();
            return;
        }
    }
    Q_EMIT failed(tr("No numeric field of this log is named %1").arg(name));
}

void PlotPage::remove(PlotPanel* panel)
{
    m_panels.erase(std::find(m_panels.begin(), m_panels.end(), panel));
    panel->disconnect(this);
    panel->hide();
    panel->deleteLater();
    if (m_panels.empty())
        m_stack->hide();
    arrange();
    update();
}

void PlotPage::panelChanged()
{
    arrange();
}

/// Only the lowest plot labels the times, and all drawing areas begin at the same place.
void PlotPage::arrange()
{
    int width = 0;
    for (size_t i = 0; i < m_panels.size(); ++i) {
        m_panels[i]->setTimeAxisVisible(i + 1 == m_panels.size());
        width = std::max(width, m_panels[i]->getLabelWidth());
    }
    for (PlotPanel* panel : m_panels)
        panel->setLabelWidth(width);
}

void PlotPage::setRange(double from, double to)
{
    constexpr double shortest = 2; // milliseconds
    if (to - from < shortest)
        return;
    m_isWhole = false;
    m_from = from;
    m_to = to;
    for (PlotPanel* panel : m_panels)
        panel->setRange(from, to);
    arrange();
}

void PlotPage::showWhole()
{
    if (m_log && m_log->getFirstTime() && m_log->getLastTime()) {
        const auto from = static_cast<double>(*m_log->getFirstTime());
        const auto to = static_cast<double>(*m_log->getLastTime());
        const double edge = std::max((to - from) * 0.01, 500.0);
        setRange(from - edge, to + edge);
    }
    m_isWhole = true;
}

void PlotPage::showAll()
{
    for (PlotPanel* panel : m_panels)
        panel->showAllValues();
    showWhole();
}

void PlotPage::showCursor(double time)
{
    for (PlotPanel* panel : m_panels)
        panel->setCursor(time);
    m_time->setText(m_log ? m_log->timeText(std::max<int64_t>(0, static_cast<int64_t>(time)), false)
                          : QString());
}

void PlotPage::hideCursor()
{
    for (PlotPanel* panel : m_panels)
        panel->clearCursor();
    m_time->clear();
}

void PlotPage::move(double share)
{
    const double step = (m_to - m_from) * share;
    setRange(m_from + step, m_to + step);
}

void PlotPage::zoom(double factor)
{
    const double centre = (m_from + m_to) / 2;
    const double half = (m_to - m_from) / 2 * factor;
    setRange(centre - half, centre + half);
}

void PlotPage::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
        move(-0.2);
        break;
    case Qt::Key_Right:
        move(0.2);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Up:
        zoom(0.5);
        break;
    case Qt::Key_Minus:
    case Qt::Key_Down:
        zoom(2);
        break;
    case Qt::Key_0:
    case Qt::Key_Home:
        showAll();
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void PlotPage::paintEvent(QPaintEvent*)
{
    if (!m_panels.empty())
        return;
    QPainter painter(this);
    paintEmptyText(painter, *this, rect(),
                   m_log ? tr("Nothing is plotted yet.\nType the name of a field above, or choose "
                              "a field of a message and press Enter.")
                         : tr("Open a log to plot its fields."));
}

void PlotPage::renderAll(QPainter& painter, const QRectF& area)
{
    const double height = area.height() / static_cast<double>(m_panels.size());
    for (size_t i = 0; i < m_panels.size(); ++i) {
        const QRectF part(0, height * static_cast<double>(i), area.width(), height);
        m_panels[i]->render(painter, part.adjusted(8, 8, -8, -8));
    }
}

std::optional<Exported> PlotPage::getExported()
{
    if (m_panels.empty() || !m_log)
        return std::nullopt;
    const QSize size(std::max(m_stack->width(), 600),
                     std::max(m_stack->height(), 240 * static_cast<int>(m_panels.size())));
    return Exported{tr("Plots of %1").arg(m_log->getName()), size,
                    [this](QPainter& painter, const QRectF& area) { renderAll(painter, area); },
                    [this](QTextStream& out) { writeTable(out); }};
}

/// The points within the times shown.
void PlotPage::writeTable(QTextStream& out) const
{
    out << "time,field,series,value,unit\n";
    for (const PlotPanel* panel : m_panels) {
        const QString field = csvCell(panel->getField().getExpression());
        const QString unit = csvCell(panel->getField().getUnit());
        for (const PlotSeries* series : panel->getShown()) {
            const QString name = csvCell(series->getName());
            for (size_t i = 0; i < series->size(); ++i) {
                const PlotPoint& point = (*series)[i];
                if (point.time < m_from || point.time > m_to)
                    continue;
                out << m_log->timeText(static_cast<int64_t>(point.time), false) << ',' << field
                    << ',' << name << ',' << QString::number(point.value, 'g', 17) << ',' << unit
                    << '\n';
            }
        }
    }
}

void PlotPage::save(QSettings& settings) const
{
    QStringList plots;
    for (const PlotPanel* panel : m_panels)
        plots += panel->getField().getExpression() + '\n' + panel->getChoice();
    settings.setValue("plots", plots);
}

void PlotPage::restore(const QSettings& settings)
{
    for (const QString& plot : settings.value("plots").toStringList())
        add(plot.section('\n', 0, 0), plot.section('\n', 1));
}

} // namespace tqx::view
