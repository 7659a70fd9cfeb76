// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's global state that its window, the file formats and the tools share, and the title
// line that is built from it.
#pragma once

#include "geometry/vec3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace polyfab {

struct Event;

/// The default interaction mode; the other modes are further character codes and plain numbers.
inline constexpr int defaultMode = ' ';

/// What the four name lists share. The switches outlive an opening, the rest does not.
struct NameListState {
    int pointed = -1;    ///< entry under the mouse; -1: none
    int pressed = -1;    ///< entry of the last left press: a drag starts there
    int closingKey = 0;  ///< Escape, F1, F2 or F3: closed the list; 0: a click did
    int firstColumn = 0; ///< first column of names that the window shows
    int x = -1;          ///< where the mouse was last, in client pixels
    int y = -1;
    const char* step = "";       ///< what undo calls what this event alters; "": like the list
    double wheel = 0;            ///< what fine wheels have turned short of a whole step
    bool longTextShown = false;  ///< the title is the text of the pointed entry
    bool selectedOnly = false;   ///< only selected faces are counted
    bool textureNumbers = false; ///< texture-map numbers stand before the names of groups
};

/// A file by its name and by what the name stood for when it was written.
struct WrittenFile {
    std::string path; ///< "": none
    std::uint64_t device = 0, number = 0;
    bool operator==(const WrittenFile&) const = default;
};

struct EditorState {
    int mode = defaultMode;
    std::string modeName;   ///< shown in the title
    char resizeAxis = 0;    ///< 0, 'X', 'Y' or 'Z': qualifies the resize mode
    int subview = 0;        ///< 0: the mesh itself
    std::string fileName;   ///< path of the last file read, written or dropped
    std::string lastChosen; ///< its name without the directory, offered by the next file dialog
    bool busy = false;      ///< a mesh file is being read or written
    bool wholeMeshWritten = false; ///< set by each writer: true when it left no live face out
    WrittenFile wholeFile;         ///< what such a write left last; none: less was written over it
    int currentEdgeFace = -1;      ///< face of the current edge; -1: there is none
    int currentEdgeCorner = -1;    ///< the corner of that face at which the edge begins
    std::array<std::uint8_t, 256> keys{}; ///< 0xFF while the virtual key is down
    std::uint8_t history = 0; ///< buttons now (bits 0-1) and at the mouse event before (bits 2-3)
    Vec3 mouse;               ///< pane position; a right-button drag feeds z in place of x
    std::array<Vec3, 2> settable; ///< the two settable points
    int textureNumber = 0;        ///< the texture map that is chosen, 0-7
    char smoothingAxis = 0; ///< 'x', 'y' or 'z': smoothing moves along that axis only; 0: none
    NameListState nameList;
};

inline EditorState editorState;
inline NameListState& nameList = editorState.nameList;

/// Puts every field back to its state at start-up.
void resetEditorState();

inline constexpr const char* programName = "polyfab";

/// Enters a key that goes down or up into the key-state table.
void noteKey(const Event& event);

/// Whether the virtual key is down.
[[nodiscard]] inline bool keyIsDown(int code) {
    return editorState.keys[static_cast<std::size_t>(code)] != 0;
}

/// There is no current edge any more. To be called by whatever numbers faces or corners anew.
inline void forgetCurrentEdge() {
    editorState.currentEdgeFace = editorState.currentEdgeCorner = -1;
}

/// The same if the current edge is no side of a live face of OB: it may have gone since.
void dropStaleEdge();

/// The mouse buttons as the last two mouse events tell them.
[[nodiscard]] inline bool leftPressed() { return (editorState.history & 5) == 1; }
[[nodiscard]] inline bool leftReleased() { return (editorState.history & 5) == 4; }

/// Whether the user wants long work to stop: the Escape key is down. Lets the window redraw itself
/// and moves the progress strip. Cheap enough to be asked for each of millions of elements.
[[nodiscard]] bool abortRequested();

/// Shows "PROGRAM [FILE] MODE" in the window title, the program's only status line.
void updateTitle();

} // namespace polyfab
