// SPDX-License-Identifier: GPL-3.0-or-later
// The selected surface as flat tables of points and normals, for the tools that move its points
// along their normals again and again.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"
#include "mesh/table.h"

#include <cstdint>

namespace polyfab {

/// Whose faces use a point, in its mark.
inline constexpr std::uint8_t ofSelected = 1, ofUnselected = 2, ofBoth = 3;

/// Marks every point by the live faces that use it.
void markUsers(Mesh& mesh);

/// The live selected faces of a mesh, as it was made from; the mesh itself is not touched.
class SelectedSurface {
  public:
    explicit SelectedSurface(const Mesh& mesh);

    /// False after a message box: there was no memory, and nothing of this may be used.
    explicit operator bool() const {
        return position && normal && hasCornerNormal && collected && faces;
    }

    // One element for each point of the mesh.
    Table<Vec3> position;                ///< in the world; the owner of the surface may change it
    Table<Vec3> normal;                  ///< zero where there is none
    Table<std::uint8_t> hasCornerNormal; ///< 1: a corner there has a direction to look in

    /// Works out the normals from the positions: of each point the sum of the unit normals of its
    /// corners, towards the side from which the face is seen anticlockwise.
    void findNormals();

    /// Makes each normal the unit vector along the sum of the neighbours' normals, its own not
    /// counted. A neighbour counts once for each face that has the edge.
    void smoothNormals();

    /// Calls use(before, at) with the points of each corner and of the one before it, in the order
    /// of faces and corners.
    template <typename Use>
    void eachSide(Use use) const {
        eachFace([&](const std::int32_t* corners, std::int32_t n) {
            std::int32_t before = corners[n - 1];
            for (std::int32_t k = 0; k < n; ++k) {
                use(before, corners[k]);
                before = corners[k];
            }
        });
    }

  private:
    /// Calls use(points of the corners, their number), which is 1 or more.
    template <typename Use>
    void eachFace(Use use) const {
        for (std::int64_t i = 0; i < length; i += faces[i] + 1) use(&faces[i + 1], faces[i]);
    }

    std::int32_t points;
    std::int64_t length;       ///< of `faces`
    Table<std::int32_t> faces; ///< of each face the number of its corners, then their points
    Table<Vec3> collected;     ///< of each point; zero between two calls
};

} // namespace polyfab
