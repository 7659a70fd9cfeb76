// SPDX-License-Identifier: GPL-3.0-or-later
// The global state that the window, the file formats, the tools and the generators share, and the
// title line that is built from it.
#pragma once

#include "geometry/segment.h"
#include "geometry/vec3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace polyfab {

struct Event;

/// A file by its name and by what the name stood for when it was written.
struct WrittenFile {
    std::string path; ///< "": none
    std::uint64_t device = 0, number = 0;
    bool operator==(const WrittenFile&) const = default;
};

/// The file that holds what the mesh was when it was last read or written whole.
struct HomeFile {
    std::string path;   ///< "": there is none, and saving asks for a name
    std::string format; ///< the suffix of those that are written in its way, such as ".obj"
    std::string lost;   ///< what it holds and the mesh does not, such as "3 comments"
    bool operator==(const HomeFile&) const = default;
};

/// What is shared, in one record.
struct Workbench {
    std::string modeName;   ///< of the mode or list that the window is in, shown in the title
    std::string fileName;   ///< path of the last file read, written or dropped
    std::string lastChosen; ///< its name without the directory, offered by the next file dialog
    HomeFile home;          ///< where saving goes to
    bool busy = false;      ///< a mesh file is being read or written
    bool wholeMeshWritten = false; ///< set by each writer: true when it left no live face out
    bool meshRead = false;         ///< set by whoever reads or imports a file in place of the mesh
    WrittenFile wholeFile;         ///< what such a write left last; none: less was written over it
    int currentEdgeFace = -1;      ///< face of the current edge; -1: there is none
    int currentEdgeCorner = -1;    ///< the corner of that face at which the edge begins
    std::array<std::uint8_t, 256> keys{}; ///< 0xFF while the virtual key is down
    std::array<Vec3, 2> settable;         ///< the two settable points
    std::vector<Segment> preview;         ///< of what the open dialog would make
    int textureNumber = 0;                ///< the texture map that is chosen, 0-7
    char smoothingAxis = 0; ///< 'x', 'y' or 'z': smoothing moves along that axis only; 0: none
};

inline Workbench workbench;

/// Puts every field back to its state at start-up.
void resetWorkbench();

inline constexpr const char* programName = "polyfab";

/// Enters a key that goes down or up into the key-state table.
void noteKey(const Event& event);

/// Whether the virtual key is down.
[[nodiscard]] inline bool keyIsDown(int code) {
    return workbench.keys[static_cast<std::size_t>(code)] != 0;
}

/// There is no current edge any more. To be called by whatever numbers faces or corners anew.
inline void forgetCurrentEdge() { workbench.currentEdgeFace = workbench.currentEdgeCorner = -1; }

/// Whether the current edge is a side of a live face of OB: it may have gone since.
[[nodiscard]] bool currentEdgeIsLive();

/// If it has, there is none any more.
void dropStaleEdge();

/// Whether the user wants long work to stop: the Escape key is down. Lets the window redraw itself
/// and moves the progress strip. Cheap enough to be asked for each of millions of elements.
[[nodiscard]] bool abortRequested();

/// Shows "PROGRAM [FILE] MODE" in the window title, the program's only status line.
void updateTitle();

} // namespace polyfab
