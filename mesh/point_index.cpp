// SPDX-License-Identifier: GPL-3.0-or-later
// Of points at one place only the lowest is entered.
#include "mesh/point_index.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

bool hasNan(double x, double y, double z) {
    return std::isnan(x) || std::isnan(y) || std::isnan(z);
}

} // namespace

PointIndex::PointIndex(Mesh& owner, std::size_t expected) : mesh(owner) { enterAll(expected); }

void PointIndex::enterAll(std::size_t expected) {
    const std::size_t room = 4 * static_cast<std::size_t>(mesh.np) + 2 * expected + 1;
    slots.reset(std::max<std::size_t>(1024, room));
    for (int i = 0; i < mesh.np; ++i) {
        const Point& point = mesh.points[i];
        // They equal nothing, not even themselves, and would all lie in one long row of slots.
        if (hasNan(point.x, point.y, point.z)) continue;
        std::int32_t& slot = slotOf(point.x, point.y, point.z);
        if (slot == HashSlots::empty) slot = i;
    }
}

std::int32_t& PointIndex::slotOf(double x, double y, double z) {
    return slots.find(hashOfNumbers(x, y, z), [&](std::int32_t i) {
        const Point& point = mesh.points[i];
        return point.x == x && point.y == y && point.z == z;
    });
}

int PointIndex::findOrAdd(double x, double y, double z) {
    const bool matchable = !hasNan(x, y, z);
    if (slots.isFullWith(static_cast<std::size_t>(mesh.np))) enterAll(0);
    std::int32_t* const slot = matchable ? &slotOf(x, y, z) : nullptr;
    if (matchable && *slot != HashSlots::empty) return *slot;
    const int before = mesh.np;
    const int added = mesh.addPoint(x, y, z, false);
    if (mesh.np == before) return -1;
    if (matchable) *slot = added;
    return added;
}

} // namespace polyfab
