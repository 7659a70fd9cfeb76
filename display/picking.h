// SPDX-License-Identifier: GPL-3.0-or-later
// What lies under a position of a pane: the nearest point, edge or face. The screen positions of
// the points must be up to date. Deleted faces and faces that are not shown are never found, nor
// are points and edges that only they use.
#pragma once

#include "display/look.h"
#include "mesh/mesh.h"
#include "platform/platform.h"

#include <optional>

namespace polyfab {

/// A position in one of the panes.
struct PanePlace {
    bool left; ///< pane: true: shows (sx, sy), false: (sz, sy)
    double x;  ///< sx of the left pane, sz of the right one
    double y;  ///< sy
};

/// The pane position of this client position; nothing on the line between the panes or outside.
[[nodiscard]] std::optional<PanePlace> placeInPane(Size client, int x, int y);

/// The point within the radius (pixels) that is nearest to the viewer (of equally near ones the
/// nearest to the place, then the lowest index), or -1. `except` is never found, and a point that
/// no face uses only while vertexes are shown.
[[nodiscard]] int pointAt(const Mesh& mesh, const PanePlace& place, double radius = look.pickRadius,
                          int except = -1);

struct PickedEdge {
    int face = -1;   ///< -1: none
    int corner = -1; ///< place in the face of the corner at which the edge begins
};

/// The edge within the radius that is nearest to the viewer at the place where it passes (of
/// equally near ones the nearest to the place, then the first in the order of faces).
[[nodiscard]] PickedEdge edgeAt(const Mesh& mesh, const PanePlace& place,
                                double radius = look.pickRadius);

/// The face whose outline in the pane has the place inside (even-odd rule) and that is nearest to
/// the viewer there (of equally near ones the first), or -1.
[[nodiscard]] int faceAt(const Mesh& mesh, const PanePlace& place);

} // namespace polyfab
