// SPDX-License-Identifier: GPL-3.0-or-later
// The generator is seeded by the position itself, so that neither the order of points nor a table
// is needed for those at one position to move alike.
#include "tools/noise.h"

#include "mesh/faces.h"
#include "mesh/hash_slots.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "tools/asking.h"
#include "workbench/notes.h"

#include <cstdint>
#include <string>

namespace polyfab {
namespace {

/// From -1 to 1, by splitmix64 (Steele, Lea and Flood, "Fast splittable pseudorandom number
/// generators", 2014).
double nextNumber(std::uint64_t& state) {
    std::uint64_t bits = state += 0x9E3779B97F4A7C15U;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
    bits ^= bits >> 31;
    constexpr double unit = 1.0 / (std::uint64_t{1} << 52);
    return static_cast<double>(bits >> 11) * unit - 1;
}

/// Anywhere in the ball of radius 1, as likely in one place as in another.
Vec3 placeInBall(const Vec3& seed) {
    std::uint64_t state = hashOfNumbers(seed.x, seed.y, seed.z);
    for (;;) {
        Vec3 place;
        for (int axis = 0; axis < 3; ++axis) along(place, axis) = nextNumber(state);
        if (dot(place, place) <= 1) return place;
    }
}

} // namespace

void addNoise(Mesh& mesh) {
    double most = 0;
    if (!hasFacesTo(mesh, "make noisy") || !askWithin("max noise?", ".01", 0, 1e100, most)) return;
    Table<std::uint8_t> seen(mesh.np, 0);
    if (!seen) return;
    std::int64_t moved = 0, stayed = 0;
    for (const Face& face : selectedFaces(mesh)) {
        for (const FaceCorner& corner : corners(face)) {
            if (seen[pointOf(mesh, corner)]++ != 0) continue;
            const Vec3 at = worldPosition(*corner.p);
            ++(isFinite(*corner.p) ? moved : stayed);
            if (isFinite(*corner.p)) moveTo(*corner.p, at + placeInBall(at) * most);
        }
    }
    if (most == 0) moved = 0;
    if (moved > 0) {
        mesh.changed = 1;
        stale.points = true;
    }
    note(counted(moved, "point") + " moved"
         + (stayed > 0 ? "; " + counted(stayed) + " left out, not finite" : ""));
}

} // namespace polyfab
