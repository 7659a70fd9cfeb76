// SPDX-License-Identifier: GPL-3.0-or-later
// An object on its way into the mesh: points and faces of its own, which a preview can draw and
// which enter the mesh at one go.
#pragma once

#include "geometry/segment.h"
#include "mesh/mesh.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

struct TexturePlace {
    double u, v;
};

/// Faces that go into a group and a material of their own.
struct Piece {
    std::int32_t firstFace;
    const char* group; ///< null: the current group and material
    const char* material;
    std::uint32_t color;
};

struct Shape {
    bool textured = false; ///< texture coordinates are wanted
    std::vector<Vec3> points;
    std::vector<std::int32_t> corners; ///< points by number, face after face
    std::vector<std::int32_t> ends;    ///< of each face, where its corners end
    std::vector<TexturePlace> texture;
    std::vector<std::int32_t> cornerTexture; ///< of each corner if textured; -1: none
    std::vector<std::int32_t> known; ///< what the first points are in the mesh, whatever lies there
    std::vector<Piece> pieces;       ///< in the order of their faces

    explicit Shape(bool withTexture) : textured(withTexture) {}
    /// Makes room for this many more quads and as many points.
    void reserve(double quads);
    std::int32_t addPoint(const Vec3& at);
    /// Leaves out corners whose next one is on the same point, and a face that then has fewer than
    /// three. `places`: as many texture places, or none.
    void addFace(std::span<const std::int32_t> list, std::span<const std::int32_t> places = {});
    [[nodiscard]] std::span<const std::int32_t> face(std::size_t number) const;
};

/// Whether all positions are finite and every face has an area, as far as doubles can tell.
[[nodiscard]] bool isSolid(const Shape& shape);

/// The sides of the faces, each once; of a shape that has a great many, those of some of its faces.
[[nodiscard]] std::vector<Segment> sidesOf(const Shape& shape);

/// Adds the shape: selected faces in the current group and material, or in those of their piece.
/// Points stand where the mesh has some, or are new. Returns how many were added. Without room some
/// faces are missing, after a message box. The arrays move. May throw std::bad_alloc.
std::int32_t addShape(Mesh& mesh, const Shape& shape);

} // namespace polyfab
