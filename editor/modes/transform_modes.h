// SPDX-License-Identifier: GPL-3.0-or-later
// The modes that move, magnify, turn and twist the display or the selected faces, and those that
// set the box. Each function begins a drag; without a selected face those of faces say so instead.
//
// Movement is counted in pixels from the press on: a left drag feeds screen x and y, a right drag
// screen z and y. Dragging to the right or up by 100 pixels doubles a size; dragging to the right
// or down turns by half a degree a pixel, so that what faces the viewer follows the mouse. Faces
// are resized, turned and twisted about the middle of the box around the selected ones.
#pragma once

#include "editor/modes/drag.h"

namespace polyfab {

/// What the rotate modes do.
struct TurnOptions {
    bool view = true;  ///< they turn the view; otherwise the selected faces
    bool after = true; ///< about the axes of the screen; otherwise about the object's own
};

inline TurnOptions turnOptions;

/// Moves the picture, or magnifies it about the middles of the panes.
std::unique_ptr<Drag> moveDisplay(const Event& press);
std::unique_ptr<Drag> scaleDisplay(const Event& press);

std::unique_ptr<Drag> moveObjects(const Event& press);

/// Resizes the selected faces along the screen axis that EditorState::resizeAxis names, or along
/// all three.
std::unique_ptr<Drag> resizeObjects(const Event& press);

/// Turns the view or the selected faces about x, y or z, as turnOptions says.
std::unique_ptr<Drag> turnAboutX(const Event& press);
std::unique_ptr<Drag> turnAboutY(const Event& press);
std::unique_ptr<Drag> turnAboutZ(const Event& press);

/// Turns the selected faces about a screen axis: not at all at the box's left cut-off along it, by
/// the dragged angle at the right one, evenly more between them, and no more beyond. Normals stay
/// as they are.
std::unique_ptr<Drag> twistAboutX(const Event& press);
std::unique_ptr<Drag> twistAboutY(const Event& press);
std::unique_ptr<Drag> twistAboutZ(const Event& press);

/// The left (right) cut-offs of the box go where the mouse is: x and y with the left button, z and
/// y with the right one.
std::unique_ptr<Drag> setLeftCutoff(const Event& press);
std::unique_ptr<Drag> setRightCutoff(const Event& press);

} // namespace polyfab
