// SPDX-License-Identifier: GPL-3.0-or-later
// Open addressing with linear probing. Of points at one place only the lowest is entered.
#include "mesh/point_index.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace polyfab {
namespace {

/// Mixes the bits of three doubles; 0 and -0 mix alike. The factors are odd and otherwise
/// arbitrary.
std::uint64_t mix(double x, double y, double z) {
    const auto bits = [](double value) { return std::bit_cast<std::uint64_t>(value + 0.0); };
    std::uint64_t h = bits(x) * 0x9E3779B97F4A7C15U;
    h = (h ^ (h >> 32) ^ bits(y)) * 0xC2B2AE3D27D4EB4FU;
    h = (h ^ (h >> 32) ^ bits(z)) * 0x165667B19E3779F9U;
    // Round numbers differ in their high bits only.
    h = (h ^ (h >> 32)) * 0x9E3779B97F4A7C15U;
    return h ^ (h >> 32);
}

bool hasNan(double x, double y, double z) {
    return std::isnan(x) || std::isnan(y) || std::isnan(z);
}

} // namespace

PointIndex::PointIndex(Mesh& owner) : mesh(owner) { enterAll(); }

void PointIndex::enterAll() {
    slots.assign(std::bit_ceil(std::max<std::size_t>(1024, 4 * static_cast<std::size_t>(mesh.np))),
                 -1);
    for (int i = 0; i < mesh.np; ++i) {
        const Point& point = mesh.points[i];
        // They equal nothing, not even themselves, and would all lie in one long row of slots.
        if (hasNan(point.x, point.y, point.z)) continue;
        int& slot = slots[slotOf(point.x, point.y, point.z)];
        if (slot < 0) slot = i;
    }
}

/// The slot of the point there, or the empty one where it has to be entered.
std::size_t PointIndex::slotOf(double x, double y, double z) const {
    const std::size_t mask = slots.size() - 1;
    for (std::size_t slot = mix(x, y, z) & mask;; slot = (slot + 1) & mask) {
        if (slots[slot] < 0) return slot;
        const Point& point = mesh.points[slots[slot]];
        if (point.x == x && point.y == y && point.z == z) return slot;
    }
}

int PointIndex::findOrAdd(double x, double y, double z) {
    const bool matchable = !hasNan(x, y, z);
    if (2 * static_cast<std::size_t>(mesh.np) >= slots.size()) enterAll();
    int* const slot = matchable ? &slots[slotOf(x, y, z)] : nullptr;
    if (matchable && *slot >= 0) return *slot;
    const int before = mesh.np;
    const int added = mesh.addPoint(x, y, z, false);
    if (mesh.np == before) return -1;
    if (matchable) *slot = added;
    return added;
}

} // namespace polyfab
