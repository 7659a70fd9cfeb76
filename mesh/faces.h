// SPDX-License-Identifier: GPL-3.0-or-later
// The small things that many do with faces and points.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <cstdint>

namespace polyfab {

[[nodiscard]] inline Vec3 worldPosition(const Point& p) { return {p.x, p.y, p.z}; }

[[nodiscard]] inline bool isLive(const Face& face) { return face.q != nullptr; }

[[nodiscard]] inline bool isLiveSelected(const Face& face) {
    return face.q != nullptr && face.selected != 0;
}

/// Number of the point that corner `place` of the face is on; one past the last is the first.
[[nodiscard]] inline std::int32_t pointAt(const Mesh& mesh, const Face& face, int place) {
    return indexIn(mesh.points, face.q[place == face.n ? 0 : place].p);
}

/// Appends a copy of the point, for which there must be room: at the same place in the world and on
/// the screen, but neither marked nor highlighted. Gives its number.
inline std::int32_t copyPoint(Mesh& mesh, std::int32_t index) {
    Point& copy = mesh.points[mesh.np];
    copy = mesh.points[index];
    copy.mark = copy.highlighted = 0;
    return mesh.np++;
}

} // namespace polyfab
