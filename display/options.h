// SPDX-License-Identifier: GPL-3.0-or-later
// What the panes show: the switches of the display menu and the settings of the rendering menu.
#pragma once

#include "mesh/mesh.h"

#include <cstdint>
#include <optional>

namespace polyfab {

struct DisplayOptions {
    bool vertexes = false;         ///< 382
    bool selectedVertexes = false; ///< 346
    bool normals = false;          ///< 347
    bool badEdges = false;         ///< 270
    bool unselectedGrey = false;   ///< 266: unselected faces solid and grey, otherwise dashed
    bool looseEdges = false;       ///< 323: edges of one face only are marked
    bool hideFacingAway = false;   ///< 354
    bool box = false;              ///< 373
    bool current = true;           ///< 1029: current face, edge and vertex
    bool settable = true;          ///< 1030: the two settable points
    bool axes = false;             ///< 1031
    bool grid = false;             ///< 1032
    bool numbers = false;          ///< 1033: of faces and vertexes
    bool smoothLines = true;       ///< 2005: where there are not too many
    bool paneNames = true;         ///< 2006: name and attitude in the corners of the panes
    bool backgrounds = true;       ///< 1034: the pictures behind the mesh
    bool renderLeft = false;       ///< 330: the pane is shaded, not a wireframe
    bool renderRight = false;      ///< 331
    bool renderChosen = false;     ///< the user has said which panes are
    bool renderSmooth = true;      ///< 333, or else flat: 332
    bool renderedEdges = true;     ///< 2004: the edges of faces on shaded panes
    bool renderedEdgesChosen = false;
    bool renderTextures = true; ///< 334: pictures instead of colours
    bool mixTexels = false;     ///< 2008: a pixel shows a mixture of the four texels around it
    double lightFromRight = 30; ///< 335: degrees by which the light comes from beside the viewer
    double lightFromAbove = 40;
    std::optional<std::uint32_t> renderBackground{}; ///< 355; none: that of the wires
};

inline DisplayOptions displayOptions;

[[nodiscard]] inline bool isRendered(bool leftPane) {
    return leftPane ? displayOptions.renderLeft : displayOptions.renderRight;
}

/// Area in square pixels that the face takes in the pane, negative for one that runs anticlockwise
/// there.
[[nodiscard]] double areaInPane(const Face& face, bool leftPane);

/// Whether the wireframe shows this face in the pane: it is live, and not hidden because it faces
/// away there (runs clockwise as the pane shows it, by the screen positions). A face that is seen
/// edge-on is shown.
[[nodiscard]] bool isShown(const Face& face, bool leftPane);

} // namespace polyfab
