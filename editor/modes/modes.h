// SPDX-License-Identifier: GPL-3.0-or-later
// The interaction modes: what the mouse does to the mesh view is a row of a table.
#pragma once

#include "platform/platform.h"

namespace polyfab {

struct Mode {
    int command;      ///< the menu command that enters it
    int value;        ///< of EditorState::mode
    char axis;        ///< of EditorState::resizeAxis, for the resize modes; otherwise 0
    const char* name; ///< shown in the title
    void (*press)(const Event&) = nullptr;   ///< the left or right button has just gone down
    void (*drag)(const Event&) = nullptr;    ///< a button is still down
    void (*release)(const Event&) = nullptr; ///< the button has just gone up
};

/// Enters the mode of this menu command. A drag ends.
void enterMode(int command);

/// Whether a menu command enters a mode.
[[nodiscard]] bool entersMode(int command);

/// The name of the present mode becomes the one that the title shows.
void restoreModeName();

/// Hands a mouse event to the present mode, after history and position are up to date.
void modeMouse(const Event& event);

/// Whether a button that went down in the mesh view is still down, and nothing has ended the drag.
[[nodiscard]] bool dragRuns();

/// Ends a drag that runs, as if the buttons went up now; no mode hears of them until they are up.
void endDrag();

/// The same, and everything is back where it was when the first button went down: points, view and
/// box.
void cancelDrag();

/// No drag runs, whatever there was before.
void resetDrags();

} // namespace polyfab
