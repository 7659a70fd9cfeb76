// SPDX-License-Identifier: GPL-3.0-or-later
// Copies of the selected faces, on points of their own.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Appends a copy of every selected face, and of every point that they use, and reports. The copies
/// keep the attributes, and the normals and texture coordinates by reference. Afterwards exactly
/// the copies are selected, so that the next move takes them away from the originals. All arrays
/// may move.
void duplicateSelected(Mesh& mesh);

/// The same, and joins original and copy: along every edge that exactly one side of a selected face
/// lies on, a wall of four corners stands between the edge and its copy. Walls agree with the
/// copies, and with unselected faces next to the originals: when the copies are pulled out and the
/// originals deleted, all faces agree. They have the attributes and texture coordinates of the
/// selected face, no normals, and are not selected.
void duplicateSelectedJoined(Mesh& mesh);

} // namespace polyfab
