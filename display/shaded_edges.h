// SPDX-License-Identifier: GPL-3.0-or-later
// Lines on a shaded pane, hidden where faces hide them. Both draw on the pane that was shaded last.
#pragma once

#include "display/pane.h"
#include "mesh/mesh.h"
#include "picture/raster.h"

namespace polyfab {

/// Draws lines where another face begins, in the colour of edges of selected faces or others.
void drawFaceEdges(const Mesh& mesh, const Pane& pane);

/// Draws those parts of a line between two points that are not behind faces.
void drawSeenLine(const Pane& pane, const Point& from, const Point& to, const Stroke& stroke);

} // namespace polyfab
