// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's global state that its window, the file formats and the tools share, and the title
// line that is built from it.
#pragma once

#include "mesh/projection.h"

#include <array>
#include <cstdint>
#include <string>

namespace polyfab {

/// The default interaction mode; the other modes are further character codes and plain numbers.
inline constexpr int defaultMode = ' ';

struct EditorState {
    int mode = defaultMode;
    std::string modeName;   ///< shown in the title
    char resizeAxis = 0;    ///< 0, 'X', 'Y' or 'Z': qualifies the resize mode
    int subview = 0;        ///< 0: the mesh itself
    std::string fileName;   ///< path of the last file read, written or dropped
    std::string lastChosen; ///< its name without the directory, offered by the next file dialog
    bool busy = false;      ///< a mesh file is being read or written
    bool wholeMeshWritten = false;   ///< set by each writer: true when it left no live face out
    bool showUnselectedGrey = false; ///< the display option of command 266
    std::array<std::uint8_t, 256> keys{}; ///< 0xFF while the virtual key is down
    std::uint8_t history = 0; ///< buttons now (bits 0-1) and at the mouse event before (bits 2-3)
    Vec3 mouse;               ///< pane position; a right-button drag feeds z in place of x
    std::array<Vec3, 2> settable; ///< the two settable points
};

inline EditorState editorState;

/// Puts every field back to its state at start-up.
void resetEditorState();

inline constexpr const char* programName = "polyfab";

/// Shows "PROGRAM [FILE] MODE" in the window title, the program's only status line.
void updateTitle();

} // namespace polyfab
