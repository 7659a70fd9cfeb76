// SPDX-License-Identifier: GPL-3.0-or-later
// The state of the window itself: its mode, its sub-view, and what the mouse did last.
#pragma once

#include "display/markers.h"
#include "editor/commands/transform_by.h"
#include "geometry/vec3.h"

#include <cstdint>
#include <vector>

namespace polyfab {

/// The default interaction mode; the other modes are further character codes and plain numbers.
inline constexpr int defaultMode = ' ';

/// What the four name lists share. The switches outlive an opening, the rest does not.
struct NameListState {
    int pointed = -1;     ///< entry under the mouse; -1: none
    int pressed = -1;     ///< entry of the last left press: a drag starts there
    int closingKey = 0;   ///< Escape, F1, F2 or F3: closed the list; 0: a click did
    int first = 0;        ///< entry in the upper left corner: the window shows whole columns
    bool toggled = false; ///< the last left press was one with Ctrl, and has turned its pick round
    int x = -1;           ///< where the mouse was last, in client pixels
    int y = -1;
    double wheel = 0;            ///< what fine wheels have turned short of a whole step
    bool longTextShown = false;  ///< the title is the text of the pointed entry
    bool selectedOnly = false;   ///< only selected faces are counted
    bool textureNumbers = false; ///< texture-map numbers stand before the names of groups
};

/// Of the mesh, deleted ones left out.
struct FaceCounts {
    std::int64_t live = 0;
    std::int64_t selected = 0;
};

/// The right button, as long as it may be a click.
struct RightPress {
    bool isClick = false;
    int x = 0, y = 0; ///< client position of the press
};

struct EditorState {
    int mode = defaultMode;
    char resizeAxis = 0;      ///< 0, 'X', 'Y' or 'Z': qualifies the resize mode
    int subview = 0;          ///< 0: the mesh itself
    std::uint8_t buttons = 0; ///< of the mouse: now (bits 0-1) and at the event before (bits 2-3)
    Vec3 mouse;               ///< pane position; a right-button drag feeds z in place of x
    NameListState nameList;
    FaceCounts faces;       ///< as the status line tells them
    bool uncounted = true;  ///< they may be others by now
    bool statusLine = true; ///< it is shown
    bool toolBar = true;    ///< it is shown
    RightPress rightPress;
    PaneRectangle rectangle;                ///< that is drawn to select faces
    std::vector<std::int32_t> newFace;      ///< points that were clicked to be its corners
    TransformTexts transform = noTransform; ///< of "move, scale, rotate by"
};

inline EditorState editorState;
inline NameListState& nameList = editorState.nameList;

/// Puts every field, and the workbench, back to its state at start-up.
void resetEditorState();

/// The mouse buttons as the last two mouse events tell them.
[[nodiscard]] inline bool leftPressed() { return (editorState.buttons & 5) == 1; }

} // namespace polyfab
