// SPDX-License-Identifier: GPL-3.0-or-later
// Removing an edge between two faces by making them one.
#pragma once

#include "mesh/mesh.h"

#include <vector>

namespace polyfab {

/// One side of a live face: from this corner (a place in the face) to the next one.
struct Side {
    int face;
    int corner;
};

/// All other sides on the edge of this one, whichever way they run, in the order of faces. Time is
/// linear in the corners of the mesh.
[[nodiscard]] std::vector<Side> otherSides(const Mesh& mesh, const Side& side);

/// Joins the faces of two sides of one edge. The edge goes, and so do the edges beside it, as far
/// as the two faces run along each other without a gap. The first face becomes the whole, with its
/// own attributes and what the remaining corners of both refer to; the other one is deleted, and
/// the first becomes current if that was. Points that only the removed edges had stay, unused.
/// Sets `changed`; the array of corners moves.
///
/// Null, or the reason, as words for the user, why nothing was done. (Without room the mesh is what
/// a failed growth leaves.)
[[nodiscard]] const char* joinFaces(Mesh& mesh, const Side& keep, const Side& other);

} // namespace polyfab
