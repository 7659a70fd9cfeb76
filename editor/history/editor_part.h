// SPDX-License-Identifier: GPL-3.0-or-later
// What the user sees of a mesh besides the mesh: it comes back with it.
#pragma once

#include "display/box.h"
#include "display/material_looks.h"
#include "display/view.h"
#include "geometry/vec3.h"
#include "workbench/state.h"

#include <array>
#include <string>

namespace polyfab {

struct EditorPart {
    std::array<Vec3, 2> settable;
    Box box; ///< as `view` shows it
    View view;
    int edgeFace = -1, edgeCorner = -1; ///< the current edge, as the workbench has it
    std::string fileName, lastChosen;
    HomeFile home{};
    LooksRef looks{};
};

/// As it is now.
[[nodiscard]] EditorPart presentPart();

/// Brings back the settable points, the looks of the materials and the current edge, which must be
/// one of OB, or none.
void restorePicks(const EditorPart& part);

/// Brings back the file name, and where saving goes to.
void restoreFileName(const EditorPart& part);

/// Brings back the view and the box in it, in the window as large as it is now.
void restoreView(const EditorPart& part);

} // namespace polyfab
