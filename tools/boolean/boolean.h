// SPDX-License-Identifier: GPL-3.0-or-later
// Welding the selected faces where they meet, and what is made of the bodies that they enclose.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Asks what to keep. Then the selected faces are cut along the lines on which they cut and touch
/// each other, and welded there. With closed pieces, and if so wanted, only what bounds their
/// union, what they have in common, or the current face's piece without the others is left.
/// Otherwise a box says that they are only welded.
///
/// Pieces of a face take its place and the end of the mesh; points at one position become one.
/// Unselected neighbours get the new points on their edges as corners. Faces that nothing cuts stay
/// as they are. Escape, like any refusal, leaves the mesh as it was; without room it is what a
/// failed growth leaves. May throw std::bad_alloc while the mesh is as it was.
void weldIntersecting(Mesh& mesh);

} // namespace polyfab
