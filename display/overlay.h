// SPDX-License-Identifier: GPL-3.0-or-later
// What lies under and over the edges in a pane: grid, axes, vertexes, normals, box, what is
// current, settable points and numbers, each when displayOptions asks for it; and the preview.
// Damaged faces are left out.
#pragma once

#include "display/markers.h"
#include "display/pane.h"
#include "mesh/mesh.h"

namespace polyfab {

/// The grid. Its lines are a power of ten, or 2 or 5 times one, apart, as comes nearest to 50
/// pixels; they lie on the plane of two world axes that the pane sees least aslant.
void drawGrid(const Pane& pane);

/// The world's axes, each with its letter.
void drawAxes(const Pane& pane);

/// The name of the pane and, in a corner, which way the world's axes run; in an empty window how to
/// begin.
void drawPaneNames(const Mesh& mesh, const Pane& pane);

/// The current face, filled with a breath of its colour.
void drawTint(const Mesh& mesh, const Pane& pane);

/// All the rest. Screen positions must be up to date. May throw std::bad_alloc.
void drawOverlay(const Mesh& mesh, const Pane& pane, const Markers& markers);

/// One line of text, its upper left corner at the place, or nothing unless all of it is in the
/// pane.
void drawLabel(const Pane& pane, Place place, const std::string& text, const Font& font,
               std::uint32_t color);

} // namespace polyfab
