#pragma once

#include <QPainter>
#include <QRect>
#include <QString>
#include <QWidget>

namespace tqx::view
{

/// Writes in the middle of an empty view how to fill it.
void paintEmptyText(QPainter& painter, const QWidget& widget, const QRect& area,
                    const QString& text);

} // namespace tqx::view
