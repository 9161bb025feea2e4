#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include <vector>

namespace tqx::view
{

/// Something in a picture that is to be labelled.
struct Mark {
    QPointF place;
    QSizeF label;
};

/// Where labels go beside their marks, which are discs of a radius: within `bounds` and, as far as
/// there is room, covering neither each other nor any mark. One for each mark, in their order.
std::vector<QRectF> placeLabels(const std::vector<Mark>& marks, double radius,
                                const QRectF& bounds);

} // namespace tqx::view
