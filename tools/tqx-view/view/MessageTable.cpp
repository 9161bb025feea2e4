#include "view/MessageTable.h"

#include "view/Colours.h"
#include "view/EmptyText.h"

#include <MessageInfo.h>

#include <QEvent>
#include <QFontDatabase>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStandardItemModel>

#include <algorithm>
#include <limits>

namespace tqx::view
{

namespace
{

constexpr int padding = 6;

} // namespace

MessageTable::MessageTable(MessageRows& rows, QWidget* parent)
    : QAbstractScrollArea(parent), m_rows(rows), m_columns(new QStandardItemModel(this)),
      m_header(new QHeaderView(Qt::Horizontal, this))
{
    m_columns->setHorizontalHeaderLabels(
        {tr("Time"), tr("Type"), tr("Bytes"), tr("Offset"), tr("Description")});
    m_header->setModel(m_columns);
    m_header->setStretchLastSection(true);
    m_header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    const QFontMetrics metrics = fontMetrics();
    m_header->resizeSection(Time,
                            metrics.horizontalAdvance("2026-01-06 12:00:00.000") + 3 * padding);
    m_header->resizeSection(Type, metrics.horizontalAdvance("PVTGeodetic2Extra") + 2 * padding);
    m_header->resizeSection(Size, metrics.horizontalAdvance("65,535") + 3 * padding);
    m_header->resizeSection(Offset, metrics.horizontalAdvance("10,000,000,000") + 2 * padding);
    m_columns->horizontalHeaderItem(Size)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_columns->horizontalHeaderItem(Offset)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Messages"));
    viewport()->setBackgroundRole(QPalette::Base);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(m_header, &QHeaderView::sectionResized, viewport(), qOverload<>(&QWidget::update));
    connect(m_header, &QHeaderView::geometriesChanged, this, &MessageTable::updateScrollBars);
    connect(&m_rows, &MessageRows::rowsChanged, this, &MessageTable::rowsChanged);
    connect(&m_rows, &MessageRows::loaded, this, [this] {
        viewport()->update();
        reportSelected();
    });
    connect(&m_rows, &MessageRows::found, this, &MessageTable::selectFound);
}

/// In the middle, unless it is in view already: what is around it is of interest, too.
void MessageTable::selectFound(qulonglong row)
{
    const auto first = static_cast<qulonglong>(verticalScrollBar()->value());
    const auto visible = static_cast<qulonglong>(std::max(visibleRows(), 1));
    if (row < first || row >= first + visible)
        verticalScrollBar()->setValue(static_cast<int>(row - std::min(row, visible / 2)));
    select(row);
}

void MessageTable::setEmptyText(const QString& text)
{
    m_emptyText = text;
    viewport()->update();
}

void MessageTable::setStickingToEnd(bool isSticking)
{
    m_isSticking = isSticking;
    if (isSticking && m_rows.getCount() > 0)
        select(m_rows.getCount() - 1);
}

void MessageTable::select(uint64_t row)
{
    if (m_rows.getCount() == 0)
        return;
    m_current = std::min(row, m_rows.getCount() - 1);
    const auto first = static_cast<uint64_t>(verticalScrollBar()->value());
    const auto visible = static_cast<uint64_t>(std::max(visibleRows(), 1));
    if (*m_current < first) {
        verticalScrollBar()->setValue(static_cast<int>(*m_current));
    } else if (*m_current >= first + visible) {
        verticalScrollBar()->setValue(static_cast<int>(*m_current - visible + 1));
    }
    viewport()->update();
    reportSelected();
}

void MessageTable::reportSelected()
{
    if (!m_current)
        return;
    const std::optional<MessageEntry> entry = m_rows.getEntry(*m_current);
    if (!entry || entry->offset == m_reported)
        return;
    m_reported = entry->offset;
    Q_EMIT selected(*entry);
}

void MessageTable::rowsChanged(bool fromScratch)
{
    const uint64_t count = m_rows.getCount();
    if (fromScratch) {
        // The previously selected message is selected again if the list still has it.
        m_hasWanted = m_reported != ~uint64_t{0};
        m_wantedOffset = m_reported;
        m_current.reset();
        m_reported = ~uint64_t{0};
        verticalScrollBar()->setValue(0);
    }
    updateScrollBars();
    if (m_isSticking && count > 0) {
        select(count - 1);
    } else if (count > 0 && m_hasWanted && !m_rows.isSearching()) {
        m_hasWanted = false;
        m_rows.findOffset(m_wantedOffset);
    }
    if (!m_current && count > 0)
        select(0);
    viewport()->update();
}

int MessageTable::rowHeight() const
{
    return fontMetrics().height() + 4;
}

int MessageTable::visibleRows() const
{
    return viewport()->height() / rowHeight();
}

void MessageTable::updateScrollBars()
{
    const int height = m_header->sizeHint().height();
    setViewportMargins(0, height, 0, 0);
    const QRect area = viewport()->geometry();
    m_header->setGeometry(area.left(), area.top() - height, area.width(), height);
    const uint64_t most = std::numeric_limits<int>::max();
    const auto count = static_cast<int>(std::min(m_rows.getCount(), most));
    verticalScrollBar()->setRange(0, std::max(0, count - visibleRows()));
    verticalScrollBar()->setPageStep(std::max(1, visibleRows()));
    verticalScrollBar()->setSingleStep(1);
}

void MessageTable::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
    if (m_isSticking && m_current)
        select(*m_current);
}

void MessageTable::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateScrollBars();
}

void MessageTable::scrollContentsBy(int, int)
{
    viewport()->update();
}

QString MessageTable::textOf(const MessageEntry& entry, int column) const
{
    switch (column) {
    case Time:
        return entry.time ? m_rows.getLog()->timeText(*entry.time, false) : QString();
    case Type:
        return entry.type;
    case Size:
        return QLocale().toString(entry.size);
    case Offset:
        return QLocale().toString(static_cast<qulonglong>(entry.offset));
    default:
        return entry.info ? entry.info->getShortDescriptiveText() : tr("(unknown)");
    }
}

void MessageTable::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    if (m_rows.getCount() == 0) {
        const QString text = m_rows.isSearching() ? tr("Searching…") : m_emptyText;
        paintEmptyText(painter, *this, viewport()->rect(), text);
        return;
    }
    const int height = rowHeight();
    const auto first = static_cast<uint64_t>(verticalScrollBar()->value());
    const auto shown = static_cast<uint64_t>(viewport()->height() / height) + 1;
    const uint64_t end = std::min(m_rows.getCount(), first + shown);
    for (uint64_t row = first; row < end; ++row) {
        const QRect line(0, static_cast<int>(row - first) * height, viewport()->width(), height);
        const bool isCurrent = m_current && *m_current == row;
        const QPalette::ColorGroup group = hasFocus() ? QPalette::Active : QPalette::Inactive;
        if (isCurrent) {
            painter.fillRect(line, palette().brush(group, QPalette::Highlight));
        } else if (row % 2 == 1) {
            painter.fillRect(line, palette().alternateBase());
        }
        const std::optional<MessageEntry> entry = m_rows.getEntry(row);
        if (!entry) {
            painter.setPen(quietColour(palette()));
            painter.drawText(line.adjusted(padding, 0, 0, 0), Qt::AlignVCenter, tr("…"));
            continue;
        }
        for (int column = 0; column < columnCount; ++column) {
            const QRect cell(m_header->sectionViewportPosition(column) + padding, line.top(),
                             m_header->sectionSize(column) - 2 * padding, height);
            const bool isQuiet = column == Description || column == Offset;
            painter.setPen(isCurrent ? palette().color(group, QPalette::HighlightedText)
                           : isQuiet ? quietColour(palette())
                                     : palette().color(QPalette::Text));
            const bool isNumber = column == Size || column == Offset;
            const Qt::Alignment side = isNumber ? Qt::AlignRight : Qt::AlignLeft;
            const QString text =
                fontMetrics().elidedText(textOf(*entry, column), Qt::ElideRight, cell.width());
            painter.drawText(cell, static_cast<int>(side | Qt::AlignVCenter), text);
        }
    }
}

void MessageTable::keyPressEvent(QKeyEvent* event)
{
    const uint64_t row = m_current.value_or(0);
    const auto page = static_cast<uint64_t>(std::max(1, visibleRows() - 1));
    switch (event->key()) {
    case Qt::Key_Up:
        select(row == 0 ? 0 : row - 1);
        break;
    case Qt::Key_Down:
        select(row + 1);
        break;
    case Qt::Key_PageUp:
        select(row < page ? 0 : row - page);
        break;
    case Qt::Key_PageDown:
        select(row + page);
        break;
    case Qt::Key_Home:
        select(0);
        break;
    case Qt::Key_End:
        select(m_rows.getCount() == 0 ? 0 : m_rows.getCount() - 1);
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

void MessageTable::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const auto first = static_cast<uint64_t>(verticalScrollBar()->value());
    const uint64_t row = first + static_cast<uint64_t>(event->pos().y() / rowHeight());
    if (row < m_rows.getCount())
        select(row);
}

void MessageTable::mouseMoveEvent(QMouseEvent* event)
{
    if ((event->buttons() & Qt::LeftButton) != 0 && viewport()->rect().contains(event->pos())) {
        const auto first = static_cast<uint64_t>(verticalScrollBar()->value());
        select(first + static_cast<uint64_t>(event->pos().y() / rowHeight()));
    }
}

} // namespace tqx::view
