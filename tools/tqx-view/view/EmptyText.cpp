#include "view/EmptyText.h"

#include "view/Colours.h"

namespace tqx::view
{

void paintEmptyText(QPainter& painter, const QWidget& widget, const QRect& area,
                    const QString& text)
{
    painter.save();
    painter.setFont(widget.font());
    painter.setPen(quietColour(widget.palette()));
    painter.drawText(area.adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap, text);
    painter.restore();
}

} // namespace tqx::view
