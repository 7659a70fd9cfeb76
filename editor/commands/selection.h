// SPDX-License-Identifier: GPL-3.0-or-later
// Commands on the selection of faces, and the words about the mesh in the title.
#pragma once

#include <cstdint>
#include <vector>

namespace polyfab {

/// Selects (unselects) every live face.
void selectAllFaces();
void unselectAllFaces();

/// Unselect the selected faces with less than 5 corners (with an area), and report how many.
void unselectSmallFaces();
void unselectFacesWithArea();

/// Puts the mesh's counts, current face and current vertex into the title.
void showInfo();

/// Works out anew which points are on selected faces, and counts them.
[[nodiscard]] int countSelectedPoints();

/// The corners' points of all selected live faces, each once, in order.
[[nodiscard]] std::vector<std::int32_t> pointsOfSelectedFaces();

/// Whether some selected face has a place that counts in an extent; if not, a box says that none is
/// selected.
[[nodiscard]] bool hasSelection();

} // namespace polyfab
