// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/thin/thin_surface.h"

#include "mesh/extent.h"
#include "mesh/faces.h"
#include "tools/edge_cuts.h"
#include "tools/flat_polygon.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace polyfab {
namespace {

/// Triangles of the selected faces, if all can be taken.
std::int64_t countTriangles(const Mesh& mesh) {
    std::int64_t count = 0;
    for (const Face& face : selectedFaces(mesh)) count += std::max(0, face.n - 2);
    return count;
}

bool hasRepeats(const Face& face) {
    const auto same = [&](int i, int k) { return face.q[i].p == face.q[k].p; };
    if (face.n == 3) return same(0, 1) || same(1, 2) || same(2, 0);
    std::vector<const Point*> points;
    for (const FaceCorner& corner : corners(face)) points.push_back(corner.p);
    std::sort(points.begin(), points.end());
    return std::adjacent_find(points.begin(), points.end()) != points.end();
}

bool isTriangulable(const Face& face) {
    return face.n >= 3 && !hasRepeats(face)
           && std::all_of(face.q, face.q + face.n, [](const FaceCorner& corner) {
                  return largestPart(worldPosition(*corner.p)) <= farthest;
              });
}

/// An edge at the point that is looked at, by its other end: the corners there whose triangles have
/// it as the side to the next corner, and as the side from the one before; -1: none.
struct Spoke {
    std::int32_t point;
    std::int32_t out = -1, in = -1;
};

// What makes an edge a feature.
constexpr unsigned border = 1, seam = 2, kindOfFace = 4, crease = 8;

/// Tells of one point after the other what may become of it.
class LineFinder {
  public:
    explicit LineFinder(ThinSurface& looked) : surface(looked), spokeOf(looked.mesh.np, 0) {}
    explicit operator bool() const { return static_cast<bool>(spokeOf); }

    void look(std::int32_t point) {
        spokes.clear();
        crowded = false;
        std::int32_t count = 0;
        surface.eachCornerAt(point, [&](std::int32_t c) {
            ++count;
            enter(&Spoke::out, surface.pointAt(ThinSurface::further(c, 1)), c);
            enter(&Spoke::in, surface.pointAt(ThinSurface::further(c, 2)), c);
        });
        if (count == 0 || surface.kind[point] == ThinKind::fixed) return;
        surface.kind[point] = !crowded && isFan(count) ? kindOf(point) : ThinKind::fixed;
    }

  private:
    Spoke& spokeTo(std::int32_t point) {
        const auto known = static_cast<std::size_t>(spokeOf[point]);
        if (known < spokes.size() && spokes[known].point == point) return spokes[known];
        spokeOf[point] = static_cast<std::int32_t>(spokes.size());
        return spokes.emplace_back(Spoke{point});
    }

    void enter(std::int32_t Spoke::*way, std::int32_t to, std::int32_t c) {
        std::int32_t& place = spokeTo(to).*way;
        crowded = crowded || place >= 0;
        place = c;
    }

    /// Whether one walks past all corners by going from triangle to triangle.
    bool isFan(std::int32_t count) {
        const auto open = std::find_if(spokes.begin(), spokes.end(),
                                       [](const Spoke& spoke) { return spoke.in < 0; });
        const std::int32_t start = open == spokes.end() ? spokes[0].out : open->out;
        std::int32_t passed = 0;
        for (std::int32_t c = start; c >= 0 && passed < count;) {
            ++passed;
            c = spokeTo(surface.pointAt(ThinSurface::further(c, 2))).out;
            if (c == start) break;
        }
        return passed == count;
    }

    ThinKind kindOf(std::int32_t point) {
        int features = 0;
        unsigned first = 0;
        bool alike = true;
        for (const Spoke& spoke : spokes) {
            const unsigned reasons = reasonsOf(spoke);
            if (reasons == 0) continue;
            if (features == 0) first = reasons;
            alike = alike && reasons == first;
            if (features < 2) {
                surface.lineEnds[point][static_cast<std::size_t>(features)] = spoke.point;
            }
            ++features;
        }
        if (features == 0) return ThinKind::free;
        return features == 2 && alike && goesOn(point) ? ThinKind::line : ThinKind::fixed;
    }

    /// Whether the line turns by less than 45 degrees at the point: a corner of it has to stay.
    [[nodiscard]] bool goesOn(std::int32_t point) const {
        const auto& [before, after] = surface.lineEnds[point];
        const Vec3 in = unit(surface.place[point] - surface.place[before]);
        const Vec3 out = unit(surface.place[after] - surface.place[point]);
        return dot(in, out) > std::sqrt(0.5);
    }

    [[nodiscard]] unsigned reasonsOf(const Spoke& spoke) const {
        if (spoke.out < 0 || spoke.in < 0) return border;
        const std::int32_t here1 = spoke.out, there1 = ThinSurface::further(here1, 1);
        const std::int32_t here2 = spoke.in, there2 = ThinSurface::further(here2, 2);
        unsigned reasons = 0;
        if (!sameTexCoord(here1, here2) || !sameTexCoord(there1, there2)) reasons |= seam;
        const Face& face1 = surface.mesh.faces[surface.owner[here1 / 3]];
        const Face& face2 = surface.mesh.faces[surface.owner[here2 / 3]];
        if (face1.mat != face2.mat || face1.g != face2.g) reasons |= kindOfFace;
        const Vec3 area1 = areaOf(here1), area2 = areaOf(here2);
        const double product = dot(area1, area2);
        // The cosine of 60 degrees is a half.
        if (product < 0 || 4 * product * product < dot(area1, area1) * dot(area2, area2)) {
            reasons |= crease;
        }
        return reasons;
    }
    [[nodiscard]] bool sameTexCoord(std::int32_t c1, std::int32_t c2) const {
        return surface.sameTexCoord(surface.corner[c1].t, surface.corner[c2].t);
    }
    [[nodiscard]] Vec3 areaOf(std::int32_t c) const {
        const auto at = [&](std::int32_t k) {
            return surface.place[surface.pointAt(ThinSurface::further(c, k))];
        };
        return cross(at(1) - at(0), at(2) - at(0));
    }

    ThinSurface& surface;
    Table<std::int32_t> spokeOf; ///< of each point: the place of the spoke to it, if there is one
    std::vector<Spoke> spokes;
    bool crowded = false; ///< two triangles have the same side at the point
};

} // namespace

ThinSurface::ThinSurface(const Mesh& owned)
    : mesh(owned), firstOf(owned.nf, -1), corner(3 * countTriangles(owned)),
      owner(countTriangles(owned)), firstCorner(owned.np, -1),
      nextCorner(3 * countTriangles(owned)), place(owned.np), moved(owned.np, 0),
      kind(owned.np, ThinKind::free), lineEnds(owned.np) {}

bool ThinSurface::sameTexCoord(std::int32_t a, std::int32_t b) const {
    if (a == b) return true;
    if (a < 0 || b < 0) return false;
    const TexCoord first = texCoord(a), second = texCoord(b);
    return first.u == second.u && first.v == second.v;
}

Vec3 ThinSurface::toWorld(const Vec3& at) const { return middle + at * scale; }

bool ThinSurface::build() {
    LineFinder finder(*this);
    if (!firstOf || !corner || !owner || !firstCorner || !nextCorner || !place || !moved || !kind
        || !lineEnds || !finder) {
        return false;
    }
    for (const Face& face : selectedFaces(mesh)) facesLeftOut += takeFace(face) ? 0 : 1;
    placePoints();
    fixOuterPoints();
    for (std::int32_t i = 0; i < mesh.np; ++i) finder.look(i);
    moveProgress();
    return true;
}

/// Cuts the face into triangles; false when that can't be done.
bool ThinSurface::takeFace(const Face& face) {
    if (!isTriangulable(face)) return false;
    polygon.clear();
    for (const FaceCorner& at : corners(face)) polygon.push_back(worldPosition(*at.p));
    const std::int32_t first = triangles;
    if (face.n == 4 && !isBadPolygon(polygon, 90)) {
        // Along the shorter of its diagonals.
        const bool across =
            squaredDistance(polygon[0], polygon[2]) <= squaredDistance(polygon[1], polygon[3]);
        addTriangle(face, across ? std::array{0, 1, 2} : std::array{0, 1, 3});
        addTriangle(face, across ? std::array{0, 2, 3} : std::array{1, 2, 3});
    } else {
        for (const auto& triangle : trianglesOf(polygon)) addTriangle(face, triangle);
    }
    if (triangles == first) return false;
    firstOf[indexIn(mesh.faces, &face)] = first;
    return true;
}

void ThinSurface::addTriangle(const Face& face, const std::array<std::int32_t, 3>& places) {
    owner[triangles] = indexIn(mesh.faces, &face);
    for (std::int32_t k = 0; k < 3; ++k) {
        const DraftCorner of = draftCorner(mesh, face.q[places[static_cast<std::size_t>(k)]]);
        const std::int32_t c = 3 * triangles + k;
        corner[c] = {of.p, of.t, of.d};
        nextCorner[c] = firstCorner[of.p];
        firstCorner[of.p] = c;
    }
    ++triangles;
}

void ThinSurface::placePoints() {
    if (triangles == 0) return;
    const Extent faces = extentOfFaces(mesh, AffineMap(), true);
    middle = faces.middle();
    const double extent = largestPart(faces.high - faces.low);
    scale = extent > 0 ? extent : 1;
    for (std::int32_t i = 0; i < mesh.np; ++i) {
        if (firstCorner[i] < 0) continue;
        const Vec3 way = worldPosition(mesh.points[i]) - middle;
        place[i] = {way.x / scale, way.y / scale, way.z / scale};
    }
}

/// Points on live faces that are no triangles here stay, and so do the edges of those.
void ThinSurface::fixOuterPoints() {
    for (const Face& face : liveFaces(mesh)) {
        if (firstOf[indexIn(mesh.faces, &face)] >= 0) continue;
        for (const auto& [from, to] : sides(face)) {
            const std::int32_t a = pointOf(mesh, from), b = pointOf(mesh, to);
            kind[a] = ThinKind::fixed;
            if (firstCorner[a] >= 0 && firstCorner[b] >= 0) outerEdges.add(a, b);
        }
    }
}

} // namespace polyfab
