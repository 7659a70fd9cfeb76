// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/select_faces.h"

#include "geometry/vec3.h"
#include "mesh/face_angle.h"
#include "mesh/faces.h"
#include "mesh/stale.h"
#include "mesh/table.h"
#include "platform/platform.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <cmath>
#include <numeric>

namespace polyfab {
namespace {

using Marks = Table<std::uint8_t>;

/// Selects or unselects each live face as `choose` says.
template <typename Choose>
void selectBy(Mesh& mesh, Choose choose) {
    for (Face& face : liveFaces(mesh)) face.selected = choose(face) ? 1 : 0;
    noteSelection();
}

/// Selects the live faces that isLike(face) says. `adds`: what was selected stays so.
template <typename IsLike>
void selectLike(Mesh& mesh, bool adds, IsLike isLike) {
    selectBy(mesh, [&](const Face& face) { return (adds && face.selected != 0) || isLike(face); });
}

/// Whether some corner of the face is on a marked point.
bool touches(const Mesh& mesh, const Face& face, const Marks& marks) {
    for (const FaceCorner& corner : corners(face)) {
        if (marks[pointOf(mesh, corner)] != 0) return true;
    }
    return false;
}

/// Marks the points of the live faces that are selected, or of those that are not.
void markPoints(const Mesh& mesh, bool selected, Marks& marks) {
    for (const Face& face : liveFaces(mesh)) {
        if ((face.selected != 0) != selected) continue;
        for (const FaceCorner& corner : corners(face)) marks[pointOf(mesh, corner)] = 1;
    }
}

/// Sets of points, each named by one of them (Tarjan's disjoint sets, with paths halved).
class PointSets {
  public:
    explicit PointSets(std::int32_t points) : parent(points) {
        for (std::int32_t i = 0; parent && i < points; ++i) parent[i] = i;
    }
    explicit operator bool() const { return static_cast<bool>(parent); }

    std::int32_t find(std::int32_t point) {
        while (parent[point] != point) {
            parent[point] = parent[parent[point]];
            point = parent[point];
        }
        return point;
    }
    void unite(std::int32_t a, std::int32_t b) { parent[find(a)] = find(b); }

  private:
    Table<std::int32_t> parent;
};

const Face* currentFace(const Mesh& mesh) {
    return hasFace(mesh, mesh.curface) ? &mesh.faces[mesh.curface] : nullptr;
}

void selectSame(Mesh& mesh, std::int16_t Face::*index) {
    const Face* const current = currentFace(mesh);
    if (current == nullptr) return;
    const int wanted = current->*index;
    selectLike(mesh, keyIsDown(key::shift),
               [&](const Face& face) { return face.*index == wanted; });
}

Vec3 middleOf(const Face& face) {
    Vec3 sum;
    for (const FaceCorner& corner : corners(face)) sum += worldPosition(*corner.p);
    return sum * (1.0 / face.n);
}

} // namespace

void invertSelection(Mesh& mesh) {
    selectBy(mesh, [](const Face& face) { return face.selected == 0; });
}

void growSelection(Mesh& mesh) {
    Marks marks(mesh.np, 0);
    if (!marks) return;
    markPoints(mesh, true, marks);
    selectBy(mesh,
             [&](const Face& face) { return face.selected != 0 || touches(mesh, face, marks); });
}

void shrinkSelection(Mesh& mesh) {
    Marks marks(mesh.np, 0);
    if (!marks) return;
    markPoints(mesh, false, marks);
    selectBy(mesh,
             [&](const Face& face) { return face.selected != 0 && !touches(mesh, face, marks); });
}

void selectConnected(Mesh& mesh) {
    PointSets sets(mesh.np);
    Marks reached(mesh.np, 0);
    if (!sets || !reached) return;
    LoopProgress progress(mesh.nf);
    for (const Face& face : liveFaces(mesh)) {
        progress.step();
        for (const FaceCorner& corner : corners(face)) {
            sets.unite(pointOf(mesh, corner), pointOf(mesh, *face.q));
        }
    }
    for (const Face& face : selectedFaces(mesh)) {
        if (face.n > 0) reached[sets.find(pointOf(mesh, *face.q))] = 1;
    }
    selectBy(mesh, [&](const Face& face) {
        return face.selected != 0 || (face.n > 0 && reached[sets.find(pointOf(mesh, *face.q))]);
    });
}

void selectSameMaterial(Mesh& mesh) { selectSame(mesh, &Face::mat); }

void selectSameGroup(Mesh& mesh) { selectSame(mesh, &Face::g); }

void selectSamePlane(Mesh& mesh) {
    const Face* const current = currentFace(mesh);
    if (current == nullptr) return;
    const Vec3 normal = faceNormal(*current);
    if (isZero(normal)) return note("the current face has no plane");
    const bool adds = keyIsDown(key::shift); // which may go up while it is asked
    double most = 0;
    if (!askNumberOrCancel("max angle to the plane(deg)?", "1", most)) return;
    const Vec3 middle = middleOf(*current);
    const double rise = std::sin(std::min(std::max(most, 0.0), 90.0) * pi / 180);
    selectLike(mesh, adds, [&](const Face& face) {
        const Vec3 own = faceNormal(face);
        if (isZero(own) || !(angleBetween(normal, own) <= most)) return false;
        const Vec3 way = middleOf(face) - middle;
        const double length = std::sqrt(dot(way, way));
        // What rounding makes of a flat surface does not count.
        const double rounding = 1e-12 * (largestPart(middle) + length);
        return std::abs(dot(way, normal)) <= rise * length + rounding;
    });
}

} // namespace polyfab
