// SPDX-License-Identifier: GPL-3.0-or-later
// The selected faces as triangles on their way to fewer, beside the mesh: what hangs together, and
// the lines in it that have to stay where they are.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"
#include "mesh/table.h"
#include "tools/edge_set.h"

#include <array>
#include <cstdint>
#include <vector>

namespace polyfab {

/// Numbers of the mesh, or of new texture coordinates and normals behind those; -1: none.
struct ThinCorner {
    std::int32_t p, t, d;
};

/// What may become of a point.
enum class ThinKind : std::uint8_t {
    free,  ///< it may go anywhere
    line,  ///< it lies on a feature line and may move along that
    fixed, ///< it stays
};

/// Places are in units of the extent, from the middle of the box around the faces.
class ThinSurface {
  public:
    explicit ThinSurface(const Mesh& owner);
    /// Takes the faces and finds the feature lines: borders, also to faces that are not selected,
    /// texture seams, borders of materials and groups, creases of more than 60 degrees. Points on
    /// other faces, at the ends, corners and junctions of lines, and where the surface is no
    /// surface are fixed. False without memory, which has been said. May throw std::bad_alloc.
    [[nodiscard]] bool build();

    const Mesh& mesh;
    std::int32_t triangles = 0;
    std::int32_t facesLeftOut = 0;   ///< selected ones that can't be cut into triangles
    Table<std::int32_t> firstOf;     ///< of each face: its first triangle; -1: none
    Table<ThinCorner> corner;        ///< 3 a triangle; p is -1 in one that has gone
    Table<std::int32_t> owner;       ///< of each triangle: the face
    Table<std::int32_t> firstCorner; ///< of each point: a chain of its corners; -1: none
    Table<std::int32_t> nextCorner;  ///< on that chain
    Table<Vec3> place;               ///< of each point
    Table<std::uint8_t> moved;       ///< of each point: 1 when that is not where it was
    Table<ThinKind> kind;            ///< of each point
    Table<std::array<std::int32_t, 2>> lineEnds; ///< of a point on a line: its neighbours on it
    EdgeSet outerEdges;                          ///< of other faces, between points of these
    std::vector<TexCoord> newTexCoords;
    std::vector<Normal> newNormals;

    [[nodiscard]] TexCoord texCoord(std::int32_t t) const {
        return t < mesh.nt ? mesh.texcoords[t]
                           : newTexCoords[static_cast<std::size_t>(t - mesh.nt)];
    }
    [[nodiscard]] Normal normal(std::int32_t d) const {
        return d < mesh.nd ? mesh.normals[d] : newNormals[static_cast<std::size_t>(d - mesh.nd)];
    }
    /// Whether both stand for the same place in the texture.
    [[nodiscard]] bool sameTexCoord(std::int32_t a, std::int32_t b) const;

    [[nodiscard]] Vec3 toWorld(const Vec3& at) const;
    [[nodiscard]] double unitLength() const { return scale; }

    /// The corner of the same triangle that is so many places further.
    static std::int32_t further(std::int32_t c, std::int32_t steps) {
        return c - c % 3 + (c % 3 + steps) % 3;
    }
    [[nodiscard]] std::int32_t pointAt(std::int32_t c) const { return corner[c].p; }

    /// Calls use(corner) for the corners at the point; those of triangles that have gone are taken
    /// from its chain.
    template <typename Use>
    void eachCornerAt(std::int32_t point, Use use) {
        std::int32_t* link = &firstCorner[point];
        while (*link >= 0) {
            const std::int32_t c = *link;
            if (corner[c].p < 0) {
                *link = nextCorner[c];
                continue;
            }
            use(c);
            link = &nextCorner[c];
        }
    }

  private:
    bool takeFace(const Face& face);
    void addTriangle(const Face& face, const std::array<std::int32_t, 3>& places);
    void placePoints();
    void fixOuterPoints();

    Vec3 middle;
    double scale = 1;
    std::vector<Vec3> polygon;
};

} // namespace polyfab
