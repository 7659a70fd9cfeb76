// SPDX-License-Identifier: GPL-3.0-or-later
// The history: what undo goes back to and redo comes forward to again. The window tells it of every
// event, so that commands need not know of it.
//
// A step holds the mesh, the settable points, the box, the current edge, and the file name where it
// was the step that changed it. The view is the user's: what only moves it is no step, and undo
// leaves it where it is; the box stays around what it was around.
#pragma once

#include "editor/history/editor_part.h"
#include "mesh/snapshot.h"

#include <cstdint>
#include <string>

namespace polyfab {

inline constexpr int undoCommand = 2010;
inline constexpr int redoCommand = 2011;

/// Makes the present state the first one. To be called when OB has been made.
void startHistory();

/// Forgets all steps.
void endHistory();

/// A quarter of the machine's memory.
[[nodiscard]] std::uint64_t defaultUndoMemory();

/// The memory that steps may take. With more the oldest ones are dropped, but never the newest.
/// 0: no step is ever recorded, and none is left.
void setUndoMemory(std::uint64_t bytes);

/// Whether steps are recorded.
[[nodiscard]] bool undoIsOn();

/// Whether there is something to save: the mark of altered meshes, also in the midst of an event.
[[nodiscard]] bool isAltered();

/// To be called before an event is handled. `continues`: it belongs to a drag or to a list that
/// began with an event before, and so to the step that will come of that.
void beginEvent(bool continues);

/// To be called when an event has been handled. Whether it changed something that is saved. The
/// mark of altered meshes stays set if it was set before and no whole mesh was written.
bool endEvent();

/// When a step takes the snapshot of a mesh that has more or fewer elements than the one before.
/// Until the next change the mesh is a picture of itself, and who only looks at it needs no other.
enum class Snap { now, beforeTheNextChange };

/// The mesh and the editor as they are now become the newest step, unless they are as they were.
/// What could have been redone is then gone. When memory is short the older half of the steps is
/// dropped, again and again; where that does not help the history starts anew, and a box says so.
/// `changed`: what may be other than in the newest step. Whether it is a step.
bool recordStep(const std::string& label, Snap snap, Changed changed = Changed::anything);

/// To be called before something may change the mesh: takes the snapshot that waits for that.
void completeNewestStep();

/// Goes one step back or forward. Without one it beeps; without memory there is a message box, and
/// everything is as it was.
void undo();
void redo();

/// Whether the mesh is what a file held that was read in place of the one before, with nothing done
/// to it that is saved. False where nothing is recorded.
[[nodiscard]] bool isAsRead();

/// The mesh as the newest step recorded it, or as it was where undo has gone back to; null when
/// nothing is recorded. May throw std::bad_alloc.
[[nodiscard]] SnapshotRef presentMesh();

/// The editor as it was then, before the event that is handled now.
[[nodiscard]] const EditorPart& partBefore();

/// What undo or redo would do now, in the words of a menu; "" for nothing.
[[nodiscard]] std::string undoLabel();
[[nodiscard]] std::string redoLabel();

} // namespace polyfab
