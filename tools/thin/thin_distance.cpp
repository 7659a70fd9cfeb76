// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/thin/thin_distance.h"

#include "geometry/closest_point.h"

#include <cmath>

namespace polyfab {

ThinDistance::ThinDistance(ThinSurface& watched, double most)
    : surface(watched), mostSquared(most * most), firstOf(most > 0 ? watched.triangles : 0, -1),
      nextOf(most > 0 ? watched.mesh.np : 0), original(most > 0 ? watched.mesh.np : 0) {
    if (!*this || most == 0) return;
    for (std::int32_t i = 0; i < watched.mesh.np; ++i) {
        const std::int32_t corner = watched.firstCorner[i];
        if (corner < 0) continue;
        original[i] = watched.place[i];
        nextOf[i] = firstOf[corner / 3];
        firstOf[corner / 3] = i;
    }
}

bool ThinDistance::allows(std::int32_t gone, std::int32_t stays, const Vec3& to) {
    if (mostSquared == 0) return true;
    triangles.clear();
    left.clear();
    placed.clear();
    const auto look = [&](std::int32_t point, std::int32_t other, bool both) {
        surface.eachCornerAt(point, [&](std::int32_t c) {
            const std::int32_t next = ThinSurface::further(c, 1), last = ThinSurface::further(c, 2);
            const bool goes = surface.pointAt(next) == other || surface.pointAt(last) == other;
            if (goes && !both) return;
            triangles.push_back(c / 3);
            if (goes) return;
            left.push_back({c / 3, to, surface.place[surface.pointAt(next)],
                            surface.place[surface.pointAt(last)]});
        });
    };
    look(gone, stays, true);
    look(stays, gone, false);
    for (const std::int32_t triangle : triangles) {
        for (std::int32_t i = firstOf[triangle]; i >= 0; i = nextOf[i]) {
            if (!place(i)) return false;
        }
    }
    return true;
}

/// Finds the nearest of the triangles that are left.
bool ThinDistance::place(std::int32_t point) {
    const Vec3& at = original[point];
    double least = INFINITY;
    std::int32_t nearest = -1;
    for (const Shape& shape : left) {
        const double square = squaredDistance(at, closestInTriangle(at, shape.a, shape.b, shape.c));
        if (!(square < least)) continue;
        least = square;
        nearest = shape.triangle;
    }
    placed.emplace_back(point, nearest);
    return least <= mostSquared;
}

void ThinDistance::accept() {
    for (const std::int32_t triangle : triangles) firstOf[triangle] = -1;
    for (const auto& [point, triangle] : placed) {
        nextOf[point] = firstOf[triangle];
        firstOf[triangle] = point;
    }
    triangles.clear();
    placed.clear();
}

} // namespace polyfab
