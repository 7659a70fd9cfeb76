// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/point_drag.h"

#include "mesh/faces.h"
#include "mesh/stale.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace polyfab {
namespace {

/// A place that is not finite is none: the point stays.
void setPosition(Point& p, const Vec3& to) {
    if (!std::isfinite(to.x) || !std::isfinite(to.y) || !std::isfinite(to.z)) return;
    moveTo(p, to);
}

} // namespace

std::string byWay(const Vec3& way) {
    // What rounding leaves of a zero is no figure to show.
    const double least = 1e-12 * largestPart(way);
    const auto shown = [least](double v) { return std::abs(v) <= least ? 0 : v; };
    char text[128];
    std::snprintf(text, sizeof text, "by %.6g in x, %.6g in y, %.6g in z", shown(way.x),
                  shown(way.y), shown(way.z));
    return text;
}

PointDrag::PointDrag(std::vector<std::int32_t> dragged, std::string dragging)
    : what(std::move(dragging)), points(std::move(dragged)) {
    start.reserve(points.size());
    for (const std::int32_t point : points) start.push_back(worldPosition(OB->points[point]));
}

void PointDrag::place(const std::function<Vec3(const Vec3&)>& to) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        setPosition(OB->points[points[i]], to(start[i]));
    }
    stale.points = true;
}

void PointDrag::finish() {
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Vec3 now = worldPosition(OB->points[points[i]]);
        if (now.x == start[i].x && now.y == start[i].y && now.z == start[i].z) continue;
        OB->changed = 1;
        return pointsHaveMoved();
    }
}

std::string PointDrag::said() const {
    if (points.empty()) return "";
    const Vec3 way = worldPosition(OB->points[points.front()]) - start.front();
    return isZero(way) ? "" : "moved " + what + " " + byWay(way);
}

void PointDrag::cancel() {
    place([](const Vec3& at) { return at; });
}

} // namespace polyfab
