#include "view/BytesView.h"

#include "view/Colours.h"
#include "view/EmptyText.h"

#include <QFontDatabase>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace tqx::view
{

namespace
{

constexpr int margin = 6;
constexpr int offsetDigits = 10;

} // namespace

BytesView::BytesView(QWidget* parent) : QAbstractScrollArea(parent)
{
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (!QFontInfo(fixed).fixedPitch())
        fixed.setFamily("monospace"); // of a desktop without a setting
    setFont(fixed);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Bytes"));
    viewport()->setBackgroundRole(QPalette::Base);
}

void BytesView::setBytes(const QByteArray& bytes, uint64_t start)
{
    m_bytes = bytes;
    m_start = start;
    m_markSize = 0;
    verticalScrollBar()->setValue(0);
    updateScrollBars();
    viewport()->update();
}

void BytesView::mark(uint32_t offset, uint32_t size)
{
    m_markOffset = offset;
    m_markSize = size;
    const int line = static_cast<int>(offset) / perLine;
    const int visible = std::max(1, viewport()->height() / lineHeight());
    const int first = verticalScrollBar()->value();
    if (size > 0 && (line < first || line >= first + visible))
        verticalScrollBar()->setValue(line - visible / 3);
    viewport()->update();
}

int BytesView::lineHeight() const
{
    return fontMetrics().height() + 2;
}

int BytesView::digitWidth() const
{
    return fontMetrics().horizontalAdvance('0');
}

int BytesView::hexLeft() const
{
    return margin + (offsetDigits + 2) * digitWidth() - horizontalScrollBar()->value();
}

int BytesView::textLeft() const
{
    return hexLeft() + (3 * perLine + 2) * digitWidth();
}

QRect BytesView::cellOf(uint32_t offset) const
{
    const int column = static_cast<int>(offset) % perLine;
    const int line = static_cast<int>(offset) / perLine - verticalScrollBar()->value();
    const int gap = column >= perLine / 2 ? digitWidth() : 0;
    return {hexLeft() + 3 * column * digitWidth() + gap, line * lineHeight(), 2 * digitWidth(),
            lineHeight()};
}

void BytesView::updateScrollBars()
{
    const int lines = (static_cast<int>(m_bytes.size()) + perLine - 1) / perLine;
    const int visible = viewport()->height() / lineHeight();
    verticalScrollBar()->setRange(0, std::max(0, lines - visible));
    verticalScrollBar()->setPageStep(std::max(1, visible));
    const int width = textLeft() + horizontalScrollBar()->value() + perLine * digitWidth() + margin;
    horizontalScrollBar()->setRange(0, std::max(0, width - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setSingleStep(digitWidth());
}

void BytesView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

void BytesView::scrollContentsBy(int, int)
{
    viewport()->update();
}

void BytesView::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    if (m_bytes.isEmpty()) {
        paintEmptyText(painter, *this, viewport()->rect(),
                       tr("Select a message to see its bytes."));
        return;
    }
    const int height = lineHeight();
    const int first = verticalScrollBar()->value();
    const int lines = viewport()->height() / height + 1;
    for (int line = first; line < first + lines && line * perLine < m_bytes.size(); ++line) {
        const int top = (line - first) * height;
        const auto baseline = top + fontMetrics().ascent() + 1;
        painter.setPen(quietColour(palette()));
        painter.drawText(
            margin - horizontalScrollBar()->value(), baseline,
            QString("%1").arg(m_start + static_cast<uint64_t>(line) * perLine, offsetDigits));
        for (int column = 0; column < perLine; ++column) {
            const int offset = line * perLine + column;
            if (offset >= m_bytes.size())
                break;
            const auto byte = static_cast<unsigned char>(m_bytes[offset]);
            const QRect cell = cellOf(static_cast<uint32_t>(offset));
            const QRect text(textLeft() + column * digitWidth(), top, digitWidth(), height);
            const auto place = static_cast<uint32_t>(offset);
            const bool isMarked = place >= m_markOffset && place - m_markOffset < m_markSize;
            if (isMarked) {
                const bool goesOn = column + 1 < perLine && place + 1 - m_markOffset < m_markSize;
                const int right = goesOn ? cellOf(place + 1).left() : cell.right() + 2;
                painter.fillRect(QRect(cell.left() - 1, top, right - cell.left() + 1, height),
                                 markColour(palette()));
                painter.fillRect(text, markColour(palette()));
            }
            painter.setPen(palette().color(QPalette::Text));
            painter.drawText(cell.left(), baseline, QString("%1").arg(byte, 2, 16, QChar('0')));
            const bool isPrintable = byte >= 0x20 && byte < 0x7f;
            if (!isPrintable)
                painter.setPen(quietColour(palette()));
            painter.drawText(text.left(), baseline,
                             isPrintable ? QString(QChar(byte)) : QStringLiteral("·"));
        }
    }
}

void BytesView::mousePressEvent(QMouseEvent* event)
{
    const int line = verticalScrollBar()->value() + event->pos().y() / lineHeight();
    for (int column = 0; column < perLine; ++column) {
        const int offset = line * perLine + column;
        if (offset >= m_bytes.size())
            return;
        const QRect cell = cellOf(static_cast<uint32_t>(offset)).adjusted(-2, 0, 2, 0);
        const QRect text(textLeft() + column * digitWidth(), cell.top(), digitWidth(),
                         cell.height());
        if (cell.contains(event->pos()) || text.contains(event->pos())) {
            Q_EMIT byteSelected(static_cast<quint32>(offset));
            return;
        }
    }
}

void BytesView::keyPressEvent(QKeyEvent* event)
{
    int step = 0;
    switch (event->key()) {
    case Qt::Key_Left:
        step = -1;
        break;
    case Qt::Key_Right:
        step = static_cast<int>(std::max(m_markSize, 1U));
        break;
    case Qt::Key_Up:
        step = -perLine;
        break;
    case Qt::Key_Down:
        step = perLine;
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    const int offset = static_cast<int>(m_markOffset) + step;
    if (offset >= 0 && offset < m_bytes.size())
        Q_EMIT byteSelected(static_cast<quint32>(offset));
}

} // namespace tqx::view
