// SPDX-License-Identifier: GPL-3.0-or-later
// The handling modes: the left button makes the edge, group or vertex under the mouse the current
// one, and drags work on it. Each function takes every mouse event of its mode. Faces have a file
// of their own.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// Edges: a press makes the nearest edge current and tells when it does not have exactly one
/// adjacent face; a drag moves its two points.
void handleEdges(const Event& event);

/// Groups: a press on a face makes its group current; with Ctrl the face goes into the current one.
void handleGroups(const Event& event);

/// Vertexes: a press makes the nearest point current, a drag moves it, and one that ends with Ctrl
/// on another point welds it onto that.
void handleVertexes(const Event& event);

/// A key goes down: in its mode Delete removes the current face, after a question, or the current
/// edge. Whether the key is taken.
bool handlingKeyDown(int code);

/// Whether it would be.
[[nodiscard]] bool isHandlingKey(int code);

} // namespace polyfab
