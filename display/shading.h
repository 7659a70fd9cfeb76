// SPDX-License-Identifier: GPL-3.0-or-later
// Shaded panes: the faces of the mesh as solid surfaces in the light, flat or smooth.
#pragma once

#include "display/pane.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "picture/triangles.h"

#include <cstdint>
#include <span>

namespace polyfab {

/// Makes ready what is shaded of the mesh, as far as the flags tell that it changed; screen
/// positions must be up to date. A draft has half the pixels each way. May throw std::bad_alloc.
void prepareShading(const Mesh& mesh, const Stale& changed, bool draft);

/// Draws the faces over what is in the pane, after prepareShading: once, the left pane before the
/// right one. A pixel's brightness is 0.25 + 0.75 max(0, N L), N turned where a face is seen from
/// behind, and a channel floor(c b + 0.5). Damaged faces are left out. May throw std::bad_alloc.
void drawShaded(const Mesh& mesh, const Pane& pane);

/// What is seen in the pane that was shaded last.
struct ShadedPane {
    const DepthTiles& tiles;
    std::span<const RasterTriangle> triangles;
    int grain; ///< pixels of the pane to a side of one of the tiles'
};
[[nodiscard]] ShadedPane shadedPane();

/// Where a point is in the tiles.
[[nodiscard]] ScreenCorner placeInShaded(const Point& point, bool left);

/// Gives back the memory that is kept from picture to picture.
void forgetShading();

} // namespace polyfab
