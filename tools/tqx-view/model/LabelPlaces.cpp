#include "model/LabelPlaces.h"

#include <limits>

namespace tqx::view
{

namespace
{

/// Directions from a mark to its label, the usual ones first.
constexpr QPointF directions[] = {{1, 0},  {-1, 0}, {0, -1},  {0, 1},
                                  {1, -1}, {1, 1},  {-1, -1}, {-1, 1}};

QRectF besideMark(const Mark& mark, const QPointF& direction, double distance)
{
    const QPointF centre =
        mark.place + QPointF(direction.x() * (distance + mark.label.width() / 2),
                             direction.y() * (distance + mark.label.height() / 2));
    return {centre - QPointF(mark.label.width() / 2, mark.label.height() / 2), mark.label};
}

double overlap(const QRectF& left, const QRectF& right)
{
    const QRectF both = left & right;
    return both.isEmpty() ? 0 : both.width() * both.height();
}

} // namespace

std::vector<QRectF> placeLabels(const std::vector<Mark>& marks, double radius, const QRectF& bounds)
{
    std::vector<QRectF> taken;
    const QPointF half(radius, radius);
    for (const Mark& mark : marks)
        taken.emplace_back(mark.place - half, mark.place + half);
    std::vector<QRectF> labels;
    for (const Mark& mark : marks) {
        QRectF best;
        double least = std::numeric_limits<double>::max();
        // Farther away only where there is no room near by.
        for (const double distance : {radius + 2, 2.5 * radius + 2}) {
            for (const QPointF& direction : directions) {
                if (least == 0)
                    break;
                const QRectF place = besideMark(mark, direction, distance);
                double covered = place.width() * place.height() - overlap(place, bounds);
                for (const QRectF& other : taken)
                    covered += overlap(place, other);
                if (covered < least) {
                    least = covered;
                    best = place;
                }
            }
        }
        labels.push_back(best);
        taken.push_back(best);
    }
    return labels;
}

} // namespace tqx::view
