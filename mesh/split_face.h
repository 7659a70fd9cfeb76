// SPDX-License-Identifier: GPL-3.0-or-later
// Splitting one face in two, along the line between two of its corners.
#pragma once

#include "mesh/mesh.h"

#include <vector>

namespace polyfab {

/// Two corners of a live face, by their places in it, that do not follow each other.
struct Diagonal {
    int face;
    int from; ///< the lower of the two places
    int to;
};

/// A diagonal between these two points for every face that has one, in the order of faces. Time is
/// linear in the corners of the mesh.
[[nodiscard]] std::vector<Diagonal> diagonalsBetween(const Mesh& mesh, int point1, int point2);

/// A new face at the end, with the attributes of this one, gets the corners from one end of the
/// diagonal to the other; the face keeps the others and both ends. Corners keep what they refer to.
/// Sets `changed`. The arrays of faces and corners move. False without room; the mesh is then what
/// a failed growth leaves.
[[nodiscard]] bool splitFace(Mesh& mesh, const Diagonal& diagonal);

} // namespace polyfab
