// SPDX-License-Identifier: GPL-3.0-or-later
// The texture map areas of the mesh: sets of faces that hang together through texture coordinates.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Collects garbage, numbers the areas anew, in the order of their first faces, and makes the area
/// table, every area selected. Faces are joined by a texture coordinate that both refer to; two of
/// equal values join nothing. Area 0 is for all faces without any, and exists even if there are
/// none.
///
/// All areas behind the 32,767th share its number; a message then tells how many there are. The
/// selection of faces stays. When the collection finds a fault or memory runs out, the numbers stay
/// as they were, after a message box.
void findareas(Mesh& mesh);

} // namespace polyfab
