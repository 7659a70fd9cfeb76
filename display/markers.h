// SPDX-License-Identifier: GPL-3.0-or-later
// What the panes mark besides the mesh: it is kept elsewhere and told with each picture.
#pragma once

#include "geometry/segment.h"
#include "geometry/vec3.h"

#include <array>
#include <cstdint>
#include <span>

namespace polyfab {

/// A rectangle that is drawn with the mouse, in pane positions.
struct PaneRectangle {
    bool shown = false;
    bool left = true; ///< which pane
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
};

struct Markers {
    int edgeFace = -1;   ///< face of the current edge; -1: there is none
    int edgeCorner = -1; ///< the corner of that face at which the edge begins
    /// The settable points, world positions. Neither is shown before one has left the origin.
    std::array<Vec3, 2> settable{};
    PaneRectangle rectangle{};
    std::span<const std::int32_t> corners{}; ///< points of a face that is not made yet
    std::span<const Segment> preview{};      ///< of what is about to be made
    bool dragging = false;                   ///< pictures follow each other as the mouse moves
};

} // namespace polyfab
