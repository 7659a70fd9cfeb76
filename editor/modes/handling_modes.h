// SPDX-License-Identifier: GPL-3.0-or-later
// The handling modes: a press makes the edge, group or vertex under the mouse the current one, and
// drags work on it. Faces have a file of their own.
#pragma once

#include "editor/modes/drag.h"

namespace polyfab {

/// Edges: a press makes the nearest edge current and tells when it does not have exactly one
/// adjacent face; a drag moves its two points.
std::unique_ptr<Drag> pressEdge(const Event& press);

/// Groups: a press on a face makes its group current; with Ctrl the face goes into the current one.
std::unique_ptr<Drag> pressGroup(const Event& press);

/// Vertexes: a press makes the nearest point current, a drag moves it, and one that ends with Ctrl
/// on another point welds it onto that. A press with Ctrl that is no drag makes the point a corner
/// of the new face, or takes it out of it.
std::unique_ptr<Drag> pressVertex(const Event& press);

/// A key goes down: in its mode Delete removes the current face, after a question, or the current
/// edge, and Enter makes the new face. Whether the key is taken.
bool handlingKeyDown(int code);

/// What undo calls what the key does in the present mode; null: nothing.
[[nodiscard]] const char* handlingStep(int code);

/// Whether the present mode is one of these.
[[nodiscard]] bool isHandlingMode();

} // namespace polyfab
