// SPDX-License-Identifier: GPL-3.0-or-later
// The small things that many do with faces and points, and the ways through them: `for` over the
// faces of a mesh, the corners of a face and its sides. None costs more than a loop written out.
// The body may change and delete what it is handed, but must not add to the array.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

namespace polyfab {

[[nodiscard]] inline Vec3 worldPosition(const Point& p) { return {p.x, p.y, p.z}; }
[[nodiscard]] inline Vec3 screenPosition(const Point& p) { return {p.sx, p.sy, p.sz}; }

[[nodiscard]] inline bool isFinite(const Point& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

/// Puts the point there in the world; on the screen it stays where it was.
inline void moveTo(Point& p, const Vec3& position) {
    p.x = position.x;
    p.y = position.y;
    p.z = position.z;
}

[[nodiscard]] inline bool isLive(const Face& face) { return face.q != nullptr; }

[[nodiscard]] inline bool isLiveSelected(const Face& face) {
    return isLive(face) && face.selected != 0;
}

/// Whether there is a live face of this number, which may be any.
[[nodiscard]] inline bool hasFace(const Mesh& mesh, std::int32_t index) {
    return index >= 0 && index < mesh.nf && isLive(mesh.faces[index]);
}

/// Those of a mesh's faces that the test holds of, in their order. Element: Face or const Face.
template <typename Element, bool (*test)(const Face&)>
class FacesThat {
  public:
    class Iterator {
      public:
        Iterator(Element* first, Element* last) : face(first), end(last) { skip(); }
        Element& operator*() const { return *face; }
        Iterator& operator++() {
            ++face;
            skip();
            return *this;
        }
        bool operator==(const Element* other) const { return face == other; }

      private:
        void skip() {
            while (face != end && !test(*face)) ++face;
        }
        Element* face;
        Element* end;
    };

    explicit FacesThat(const Mesh& mesh) : first(mesh.faces), last(mesh.faces + mesh.nf) {}
    [[nodiscard]] Iterator begin() const { return {first, last}; }
    [[nodiscard]] Element* end() const { return last; }

  private:
    Element* first;
    Element* last;
};

[[nodiscard]] inline FacesThat<Face, isLive> liveFaces(Mesh& mesh) {
    return FacesThat<Face, isLive>(mesh);
}
[[nodiscard]] inline FacesThat<const Face, isLive> liveFaces(const Mesh& mesh) {
    return FacesThat<const Face, isLive>(mesh);
}
/// The live ones that are selected.
[[nodiscard]] inline FacesThat<Face, isLiveSelected> selectedFaces(Mesh& mesh) {
    return FacesThat<Face, isLiveSelected>(mesh);
}
[[nodiscard]] inline FacesThat<const Face, isLiveSelected> selectedFaces(const Mesh& mesh) {
    return FacesThat<const Face, isLiveSelected>(mesh);
}
/// Deleted ones too.
[[nodiscard]] inline std::span<Face> allFaces(const Mesh& mesh) {
    return {mesh.faces, static_cast<std::size_t>(mesh.nf)};
}

/// The corners of a live face, whose number may be below zero before the garbage is collected.
[[nodiscard]] inline std::span<FaceCorner> corners(const Face& face) {
    return {face.q, static_cast<std::size_t>(std::max<int>(face.n, 0))};
}

/// Whether all positions of a live face are numbers.
[[nodiscard]] inline bool isFinite(const Face& face) {
    return std::all_of(face.q, face.q + std::max<int>(face.n, 0),
                       [](const FaceCorner& corner) { return isFinite(*corner.p); });
}

/// The corner behind that of this place.
[[nodiscard]] inline FaceCorner& cornerAfter(const Face& face, int place) {
    return face.q[place + 1 == face.n ? 0 : place + 1];
}

/// A side of a face, from one corner to the next.
struct FaceSide {
    FaceCorner& from;
    FaceCorner& to;
};

/// The sides of a live face in the order of their first corners.
class Sides {
  public:
    class Iterator {
      public:
        Iterator(FaceCorner* start, FaceCorner* first, FaceCorner* last)
            : corner(start), wrap(first), end(last) {}
        FaceSide operator*() const { return {*corner, corner + 1 == end ? *wrap : corner[1]}; }
        Iterator& operator++() {
            ++corner;
            return *this;
        }
        bool operator==(const FaceCorner* other) const { return corner == other; }

      private:
        FaceCorner* corner;
        FaceCorner* wrap;
        FaceCorner* end;
    };

    explicit Sides(const Face& face) : first(face.q), last(face.q + std::max<int>(face.n, 0)) {}
    [[nodiscard]] Iterator begin() const { return {first, first, last}; }
    [[nodiscard]] FaceCorner* end() const { return last; }

  private:
    FaceCorner* first;
    FaceCorner* last;
};

[[nodiscard]] inline Sides sides(const Face& face) { return Sides(face); }

/// Number of the point that the corner is on.
[[nodiscard]] inline std::int32_t pointOf(const Mesh& mesh, const FaceCorner& corner) {
    return indexIn(mesh.points, corner.p);
}

/// Number of the point that corner `place` of the face is on; one past the last is the first.
[[nodiscard]] inline std::int32_t pointAt(const Mesh& mesh, const Face& face, int place) {
    return pointOf(mesh, face.q[place == face.n ? 0 : place]);
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
