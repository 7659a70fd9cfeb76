// SPDX-License-Identifier: GPL-3.0-or-later
// The sub-views that take the window over: while one is open it gets every event but the window's
// destruction.
#pragma once

#include "platform/platform.h"

namespace polyfab {

/// Values of EditorState::subview; 0 is the mesh itself.
namespace subview {
inline constexpr int groups = 1, textureMapAreas = 2, parts = 4, materials = 5;
}

/// Shows the sub-view of this number with its own menu bar.
void openSubview(int number);

/// To be called by the open sub-view: it ends with the event that is being handled.
void closeSubview();

/// Hands the event to the open sub-view. When that closes itself, its outcome is applied and the
/// mesh view is back. What undo calls the step that it may lead to; "": like the sub-view.
[[nodiscard]] const char* handleInSubview(const Event& event);

} // namespace polyfab
