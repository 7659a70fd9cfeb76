// SPDX-License-Identifier: GPL-3.0-or-later
// Selected faces that lie on the same points, whatever the order, the direction and the repeats of
// their corners.
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// Of all selected faces on the same points deletes all but the first, and reports how many.
void removeFacesOnSamePoints(Mesh& mesh);

/// Unselects every selected face that has another selected face on the same points, and reports how
/// many.
void unselectFacesOnSamePoints(Mesh& mesh);

} // namespace polyfab
