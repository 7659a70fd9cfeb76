// SPDX-License-Identifier: GPL-3.0-or-later
// Edges and neighbours of faces, worked out on demand; the marking of bad edges; and turning faces
// over so that connected ones agree. The edge of a corner runs from its point to the point of the
// next corner of its face.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Builds the edge tables of a sound mesh anew: the owner of each corner, the edges of each point,
/// and of each corner the mate (the first two corners found on an edge are each other's mates, a
/// third has none). `edgeuse` of each corner becomes the uses of its edge, at most 254; of a corner
/// without a live face, 0. False after a message box when memory ran out: no tables then.
///
/// The tables hold until points, faces or corners change, and are released only by freeEdges.
bool buildEdges(Mesh& mesh);

/// Releases the edge tables; without any it does nothing.
void freeEdges(Mesh& mesh);

/// Collects garbage unless `skipCollection`, builds the edge tables, marks bad edges (`edgeuse` 255
/// on both sides of an edge that two faces run the same way) and releases the tables unless
/// `keepTables`. When the collection finds a fault it does no more.
///
/// With `orient`, turns over the faces connected to the current face (across edges of two faces)
/// so that it runs anticlockwise on the screen and they agree with it, and reports in a message
/// box; nothing at all happens without a live current face. The screen positions of the points must
/// be up to date. Always ends with a collection and without tables then.
///
/// False after a message box: the collection found a fault, or memory ran out.
bool checkEdges(Mesh& mesh, bool orient, bool skipCollection, bool keepTables);

/// Turns the face over: the order of its corners, which keep what they refer to, is reversed.
void reverseFace(Face& face);

} // namespace polyfab
