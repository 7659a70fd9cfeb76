// SPDX-License-Identifier: GPL-3.0-or-later
// The box: a left and a right cut-off along each screen axis.
#pragma once

#include "display/view.h"
#include "geometry/vec3.h"
#include "mesh/mesh.h"

namespace polyfab {

/// Screen positions. Along an axis either cut-off may be the lower one.
struct Box {
    Vec3 left;
    Vec3 right;
};

inline Box box;

/// The box around what it is around in the one view, as the other one shows it. Both must have the
/// same rotation.
[[nodiscard]] Box carried(Box moved, const View& from, const View& to);

/// Whether all corners of the live face are in the box, its sides included (and a millionth of a
/// pixel more). Screen positions must be up to date.
[[nodiscard]] bool inBox(const Face& face);

/// Puts the box around the corners of all live faces, or of the selected ones, as the present view
/// shows them. Screen positions need not be up to date. False, and nothing done, when there is no
/// corner with a finite position.
bool fitBox(const Mesh& mesh, bool selectedOnly);

} // namespace polyfab
