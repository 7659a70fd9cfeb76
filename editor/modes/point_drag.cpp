// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/point_drag.h"

#include "mesh/stale.h"

#include <cmath>
#include <utility>

namespace polyfab {
namespace {

struct PointDrag {
    bool runs = false;
    std::vector<std::int32_t> points;
    std::vector<Vec3> start; ///< where they stood when the drag began
    std::function<void()> moved;
};

PointDrag drag;

Vec3 positionOf(std::int32_t point) {
    const Point& p = OB->points[point];
    return {p.x, p.y, p.z};
}

/// A place that is not finite is none: the point stays.
void setPosition(std::int32_t point, const Vec3& to) {
    if (!std::isfinite(to.x) || !std::isfinite(to.y) || !std::isfinite(to.z)) return;
    Point& p = OB->points[point];
    p.x = to.x;
    p.y = to.y;
    p.z = to.z;
}

bool anyPointMoved() {
    for (std::size_t i = 0; i < drag.points.size(); ++i) {
        const Vec3 now = positionOf(drag.points[i]);
        const Vec3& then = drag.start[i];
        if (now.x != then.x || now.y != then.y || now.z != then.z) return true;
    }
    return false;
}

} // namespace

void beginPointDrag(std::vector<std::int32_t> points, std::function<void()> moved) {
    endPointDrag();
    PointDrag begun{true, std::move(points), {}, std::move(moved)};
    begun.start.reserve(begun.points.size());
    for (const std::int32_t point : begun.points) begun.start.push_back(positionOf(point));
    drag = std::move(begun);
}

void placeDraggedPoints(const std::function<Vec3(const Vec3&)>& place) {
    if (!drag.runs) return;
    for (std::size_t i = 0; i < drag.points.size(); ++i) {
        setPosition(drag.points[i], place(drag.start[i]));
    }
    stale.points = true;
}

bool pointDragRuns() { return drag.runs; }

void endPointDrag() {
    if (drag.runs && anyPointMoved()) {
        OB->changed = 1;
        if (drag.moved) drag.moved();
    }
    forgetPointDrag();
}

void cancelPointDrag() {
    placeDraggedPoints([](const Vec3& start) { return start; });
    forgetPointDrag();
}

void forgetPointDrag() { drag = PointDrag(); }

} // namespace polyfab
