// SPDX-License-Identifier: GPL-3.0-or-later
// Deleting of whole faces. A deleted face stays in the mesh, without corners, until the garbage is
// collected.
#pragma once

#include "mesh/faces.h"

namespace polyfab {

/// To be called after faces were deleted: makes the picture stale and sets `changed`; a current
/// face or edge that was among them is none any more.
void noteDeletedFaces(Mesh& mesh);

/// Deletes the live faces that `doomed` picks out, and gives their number.
template <typename Doomed>
int deleteFaces(Mesh& mesh, Doomed doomed) {
    int count = 0;
    for (Face& face : liveFaces(mesh)) {
        if (!doomed(face)) continue;
        face.q = nullptr;
        ++count;
    }
    if (count > 0) noteDeletedFaces(mesh);
    return count;
}

/// Asks, then deletes every selected (unselected) face.
void deleteSelectedFaces(Mesh& mesh);
void deleteUnselectedFaces(Mesh& mesh);

/// Deletes, unasked, every selected face that is the only live one of its part.
void deletePartsOfOneFace(Mesh& mesh);

} // namespace polyfab
