// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/transform_selected.h"

#include "editor/commands/selection.h"
#include "geometry/affine.h"
#include "mesh/edges.h"
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "workbench/state.h"

#include <cmath>
#include <vector>

namespace polyfab {
namespace {

/// Calls `act` with every corner that has a normal, of the selected or of the unselected faces.
template <typename Act>
void forNormals(Mesh& mesh, bool selected, Act act) {
    for (const Face& face : liveFaces(mesh)) {
        if ((face.selected != 0) != selected) continue;
        for (FaceCorner& q : corners(face)) {
            if (q.d != nullptr) act(q);
        }
    }
}

/// What the selected faces do with each normal.
enum class Use : char { none, own, shared };

/// Gives the selected faces copies of the normals that unselected faces use too. False when there
/// is no room.
bool separateNormals(Mesh& mesh) {
    std::vector<Use> use(static_cast<std::size_t>(mesh.nd), Use::none);
    const auto of = [&](const FaceCorner& q) {
        return static_cast<std::size_t>(indexIn(mesh.normals, q.d));
    };
    forNormals(mesh, true, [&](const FaceCorner& q) { use[of(q)] = Use::own; });
    std::int64_t copies = 0;
    forNormals(mesh, false, [&](const FaceCorner& q) {
        if (use[of(q)] != Use::own) return;
        use[of(q)] = Use::shared;
        ++copies;
    });
    if (copies == 0) return true;
    if (mesh.growNormals(mesh.nd + copies, false) == 0) return false;
    stale.edges = true; // corners have other normals
    std::vector<int> copy(use.size(), -1);
    forNormals(mesh, true, [&](FaceCorner& q) {
        const std::size_t i = of(q);
        if (i >= use.size() || use[i] != Use::shared) return;
        if (copy[i] < 0) copy[i] = mesh.addNormal(q.d->x, q.d->y, q.d->z);
        q.d = mesh.normals + copy[i];
    });
    return true;
}

/// The transposed inverse: takes normals of planes to normals of the mapped planes.
AffineMap mapOfNormals(const AffineMap& map) {
    const AffineMap inverse = inverseOf(map);
    AffineMap result;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) result.row[i][k] = inverse.row[k][i];
    }
    return result;
}

void mapNormal(Normal& d, const AffineMap& map) {
    const Vec3 mapped = map({d.x, d.y, d.z});
    const double factor = std::hypot(d.x, d.y, d.z) / std::hypot(mapped.x, mapped.y, mapped.z);
    if (!std::isfinite(factor)) return; // it has no direction
    d = {mapped.x * factor, mapped.y * factor, mapped.z * factor};
}

} // namespace

void transformSelectedNormals(Mesh& mesh, const AffineMap& map) {
    if (mesh.nd == 0 || !separateNormals(mesh)) return;
    const AffineMap turned = mapOfNormals(map);
    std::vector<bool> done(static_cast<std::size_t>(mesh.nd));
    forNormals(mesh, true, [&](const FaceCorner& q) {
        const auto i = static_cast<std::size_t>(indexIn(mesh.normals, q.d));
        if (!done[i]) mapNormal(*q.d, turned);
        done[i] = true;
    });
}

bool transformSelected(Mesh& mesh, const AffineMap& map) {
    const std::vector<std::int32_t> points = pointsOfSelectedFaces();
    if (points.empty()) return false;
    for (const std::int32_t i : points) {
        Point& p = mesh.points[i];
        moveTo(p, map(worldPosition(p)));
    }
    transformSelectedNormals(mesh, map);
    if (determinantOf(map) < 0) {
        for (Face& face : selectedFaces(mesh)) reverseFace(face);
        forgetCurrentEdge(); // corners are numbered the other way round
        stale.edges = true;
    }
    mesh.changed = 1;
    stale.points = true;
    return true;
}

} // namespace polyfab
