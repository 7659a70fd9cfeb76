// SPDX-License-Identifier: GPL-3.0-or-later
#include "generators/shape.h"

#include "mesh/face_area.h"
#include "mesh/point_index.h"
#include "mesh/stale.h"
#include "workbench/long_work.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

/// The groups and materials of the pieces, one after the other; at the end the current ones are
/// what they were.
class Pieces {
  public:
    Pieces(Mesh& owner, const std::vector<Piece>& list)
        : mesh(owner), group(owner.curgroup), material(owner.curmat), next(list.begin()),
          last(list.end()) {}
    ~Pieces() { enter(group, material); }
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    void enterFace(std::int32_t face) {
        if (next == last || next->firstFace > face) return;
        const Piece& piece = *next++;
        if (piece.group == nullptr) return enter(group, material);
        enter(static_cast<std::int16_t>(mesh.findOrAddGroup(piece.group)),
              static_cast<std::int16_t>(mesh.findOrAddMaterial(piece.color, piece.material)));
    }

  private:
    void enter(std::int16_t toGroup, std::int16_t toMaterial) {
        mesh.curgroup = toGroup;
        mesh.curmat = toMaterial;
    }

    Mesh& mesh;
    std::int16_t group, material;
    std::vector<Piece>::const_iterator next, last;
};

bool makeRoom(Mesh& mesh, const Shape& shape) {
    const auto more = [](std::int32_t count, std::size_t added) {
        return std::int64_t{count} + static_cast<std::int64_t>(added);
    };
    return mesh.growPoints(more(mesh.np, shape.points.size()), false) != 0
           && mesh.growCorners(more(mesh.nq, shape.corners.size()), false) != 0
           && mesh.growFaces(more(mesh.nf, shape.ends.size()), false) != 0
           && (shape.texture.empty()
               || mesh.growTexCoords(more(mesh.nt, shape.texture.size()), false) != 0);
}

/// The numbers of the shape's points in the mesh; fewer where room ran out.
std::vector<std::int32_t> enterPoints(Mesh& mesh, const Shape& shape) {
    std::vector<std::int32_t> numbers = shape.known;
    numbers.reserve(shape.points.size());
    PointIndex index(mesh, shape.points.size());
    constexpr std::size_t ahead = 12;
    const std::size_t last = shape.points.size() - 1;
    for (std::size_t i = numbers.size(); i < shape.points.size(); ++i) {
        const Vec3 &at = shape.points[i], &later = shape.points[std::min(i + ahead, last)];
        index.prepare(later.x, later.y, later.z);
        numbers.push_back(index.findOrAdd(at.x, at.y, at.z));
        if (numbers.back() < 0) return {};
    }
    return numbers;
}

/// With room for all of them.
void enterFaces(Mesh& mesh, const Shape& shape, const std::vector<std::int32_t>& numbers) {
    const std::int32_t firstTexture = mesh.nt;
    for (const TexturePlace& place : shape.texture) mesh.addTexCoord(place.u, place.v);
    Pieces pieces(mesh, shape.pieces);
    LoopProgress progress(static_cast<std::int64_t>(shape.ends.size()));
    std::int32_t from = 0;
    for (std::size_t i = 0; i < shape.ends.size(); ++i) {
        progress.step();
        pieces.enterFace(static_cast<std::int32_t>(i));
        Face* const face = mesh.newFace(shape.ends[i] - from);
        if (face == nullptr) return;
        for (FaceCorner* corner = face->q; corner != face->q + face->n; ++corner, ++from) {
            const auto at = static_cast<std::size_t>(from);
            corner->p = mesh.points + numbers[static_cast<std::size_t>(shape.corners[at])];
            corner->edgeuse = 2;
            if (shape.textured && shape.cornerTexture[at] >= 0) {
                corner->t = mesh.texcoords + firstTexture + shape.cornerTexture[at];
            }
        }
    }
}

const Vec3& pointOf(const Shape& shape, std::int32_t number) {
    return shape.points[static_cast<std::size_t>(number)];
}

/// Whether a look at the diagonals of a triangle or quad shows an area that is far from none, as
/// nearly all have. `farthest`: the largest coordinate of all.
bool isPlainlyWide(const Shape& shape, std::span<const std::int32_t> face, double farthest) {
    if (face.size() > 4) return false;
    const Vec3& base = pointOf(shape, face[0]);
    const Vec3 first = pointOf(shape, face[1]) - base, second = pointOf(shape, face[2]) - base;
    const Vec3 third = pointOf(shape, face.back()) - base;
    const Vec3 area = face.size() == 3 ? cross(first, second) : cross(second, third - first);
    const double size = dot(first, first) + dot(second, second) + dot(third, third);
    constexpr double wide = 1e-6;
    return dot(area, area) > wide * wide * size * size && size > wide * wide * farthest * farthest;
}

bool hasNoArea(const Shape& shape, std::span<const std::int32_t> list) {
    std::vector<Point> points(list.size());
    std::vector<FaceCorner> corners(list.size());
    for (std::size_t k = 0; k < list.size(); ++k) {
        const Vec3& at = pointOf(shape, list[k]);
        points[k].x = at.x;
        points[k].y = at.y;
        points[k].z = at.z;
        corners[k].p = &points[k];
    }
    Face face{};
    face.q = corners.data();
    face.n = static_cast<std::int16_t>(list.size());
    return hasNoArea(face);
}

} // namespace

void Shape::reserve(double quads) {
    const auto more = static_cast<std::size_t>(quads) + 2; // poles, lids
    points.reserve(points.size() + more);
    ends.reserve(ends.size() + more);
    corners.reserve(corners.size() + 4 * more);
}

std::int32_t Shape::addPoint(const Vec3& at) {
    points.push_back(at);
    return static_cast<std::int32_t>(points.size()) - 1;
}

void Shape::addFace(std::span<const std::int32_t> list, std::span<const std::int32_t> places) {
    const std::size_t before = corners.size();
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (list[i] == (i + 1 == list.size() ? list[0] : list[i + 1])) continue;
        corners.push_back(list[i]);
        if (textured) cornerTexture.push_back(places.empty() ? -1 : places[i]);
    }
    if (corners.size() < before + 3) {
        corners.resize(before);
        if (textured) cornerTexture.resize(before);
        return;
    }
    ends.push_back(static_cast<std::int32_t>(corners.size()));
}

std::span<const std::int32_t> Shape::face(std::size_t number) const {
    const std::int32_t begin = number == 0 ? 0 : ends[number - 1];
    return std::span(corners).subspan(static_cast<std::size_t>(begin),
                                      static_cast<std::size_t>(ends[number] - begin));
}

bool isSolid(const Shape& shape) {
    double farthest = 0;
    for (const Vec3& at : shape.points) {
        if (!std::isfinite(at.x + at.y + at.z)) return false;
        farthest = std::max(farthest, largestPart(at));
    }
    for (std::size_t i = 0; i < shape.ends.size(); ++i) {
        const auto list = shape.face(i);
        if (!isPlainlyWide(shape, list, farthest) && hasNoArea(shape, list)) return false;
    }
    return true;
}

std::vector<Segment> sidesOf(const Shape& shape) {
    constexpr std::size_t mostFaces = 100'000; // of more, a picture shows no single ones
    const std::size_t step = shape.ends.size() / mostFaces + 1;
    std::vector<Segment> sides;
    for (std::size_t i = 0; i < shape.ends.size(); i += step) {
        const auto list = shape.face(i);
        for (std::size_t k = 0; k < list.size(); ++k) {
            const std::int32_t from = list[k], to = list[k + 1 == list.size() ? 0 : k + 1];
            // The neighbour has it the other way round.
            if (from > to && step == 1 && shape.ends.size() > 1) continue;
            sides.push_back({pointOf(shape, from), pointOf(shape, to)});
        }
    }
    return sides;
}

std::int32_t addShape(Mesh& mesh, const Shape& shape) {
    const std::int32_t before = mesh.np;
    if (!makeRoom(mesh, shape)) return 0;
    const std::vector<std::int32_t> numbers = enterPoints(mesh, shape);
    if (!numbers.empty()) enterFaces(mesh, shape, numbers);
    stale.edges = true;
    return mesh.np - before;
}

} // namespace polyfab
