// SPDX-License-Identifier: GPL-3.0-or-later
// The modes that move, magnify, turn and twist the display or the selected faces, and those that
// set the box. Each function takes every mouse event of its mode.
//
// Movement is counted in pixels from the press on: a left drag feeds screen x and y, a right drag
// screen z and y. Dragging to the right or up by 100 pixels doubles a size; dragging to the right
// or down turns by half a degree a pixel, so that what faces the viewer follows the mouse. Faces
// are resized, turned and twisted about the middle of the box around the selected ones.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// What the rotate modes do.
struct TurnOptions {
    bool view = true;  ///< they turn the view; otherwise the selected faces
    bool after = true; ///< about the axes of the screen; otherwise about the object's own
};

inline TurnOptions turnOptions;

/// Moves the picture, or magnifies it about the middles of the panes.
void moveDisplay(const Event& event);
void scaleDisplay(const Event& event);

void moveObjects(const Event& event);

/// Resizes the selected faces along the screen axis that EditorState::resizeAxis names, or along
/// all three.
void resizeObjects(const Event& event);

/// Turns the view or the selected faces about x, y or z, as turnOptions says.
void turnAboutX(const Event& event);
void turnAboutY(const Event& event);
void turnAboutZ(const Event& event);

/// Turns the selected faces about a screen axis: not at all at the box's left cut-off along it, by
/// the dragged angle at the right one, evenly more between them, and no more beyond. Normals stay
/// as they are.
void twistAboutX(const Event& event);
void twistAboutY(const Event& event);
void twistAboutZ(const Event& event);

/// The left (right) cut-offs of the box go where the mouse is: x and y with the left button, z and
/// y with the right one.
void setLeftCutoff(const Event& event);
void setRightCutoff(const Event& event);

} // namespace polyfab
