// SPDX-License-Identifier: GPL-3.0-or-later
// What is done around every event: the progress of long work, the saves for recovery, the steps of
// the history.
#include "editor/window.h"

#include "display/backgrounds.h"
#include "editor/command_table.h"
#include "editor/commands/recent.h"
#include "editor/commands/rendering.h"
#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "editor/menus.h"
#include "editor/modes/drag.h"
#include "editor/modes/handling_modes.h"
#include "editor/modes/modes.h"
#include "editor/modes/new_face.h"
#include "editor/recovery/recovery.h"
#include "editor/report.h"
#include "editor/routes.h"
#include "editor/status_line.h"
#include "editor/tell.h"
#include "formats/exchange/child_locks.h"
#include "io/state_folder.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "mesh/store.h"
#include "workbench/long_work.h"
#include "workbench/notes.h"
#include "workbench/prompts.h"
#include "workbench/state.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <optional>
#include <string_view>

namespace polyfab {
namespace {

/// Counts the events that are being handled, one inside the other.
struct Handling {
    Handling() { ++depth; }
    ~Handling() { --depth; }
    static inline int depth = 0;
};

bool readsFile(const Event& event) {
    return event.kind == EventKind::drop || event.kind == EventKind::start;
}

/// The command that the event is or amounts to, or null.
const Command* commandOf(const Event& event) {
    if (readsFile(event)) return findCommand(commandid::readMesh);
    return event.kind == EventKind::command ? findCommand(plainCommand(event.command)) : nullptr;
}

/// What undo calls what a key of the handling modes does, or null.
const char* keyStep(const Event& event) {
    return event.kind == EventKind::keyDown ? handlingStep(event.key) : nullptr;
}

/// What undo calls what the drag that runs, or has just ended, has done.
std::string dragStep() { return *drags.step != '\0' ? drags.step : plainLabel(workbench.modeName); }

/// What the menu calls the step that the event may lead to.
std::string labelOf(const Event& event) {
    if (editorState.subview != 0) return "select " + plainLabel(workbench.modeName);
    if (const char* const step = keyStep(event)) return step;
    if (const Command* const command = commandOf(event)) return plainLabel(command->label);
    return event.kind == EventKind::command ? "" : plainLabel(workbench.modeName);
}

bool movesInHistory(const Event& event) {
    return event.kind == EventKind::command
           && (event.command == undoCommand || event.command == redoCommand);
}

/// A command that is no step of the history, as the keys that fit are none.
bool onlyViews(const Event& event) {
    const Command* const command = commandOf(event);
    return command != nullptr && command->views;
}

/// The drag that runs ends and is a step, before something else begins.
void recordDrag() {
    beginEvent(true);
    endDrag();
    endEvent();
    recordStep(dragStep(), Snap::now);
}

/// The progress of a command or of the read that a drop is; nothing else is to last.
void trackWork(const Event& event, std::optional<LongWork>& work) {
    const Command* const command = commandOf(event);
    if (command == nullptr) return;
    const bool noUndo = command->escape == Escape::stopsReading && !undoIsOn();
    work.emplace(plainLabel(command->label), noUndo ? Escape::stops : command->escape);
}

/// Whether there may be something new to come back from, outside drags and lists. Most keys only
/// change the view, and the box with it; a press that is no drag sets a settable point.
bool mayChange(const Event& event) {
    if (event.kind == EventKind::command) return !movesInHistory(event) && !onlyViews(event);
    if (event.kind == EventKind::mouse) return leftPressed();
    if (event.kind == EventKind::keyDown) return keyStep(event) != nullptr;
    return readsFile(event);
}

/// Whether a command does more than to turn a switch, enter a mode or change what is seen.
bool changesMesh(const Command& command) {
    return command.checked == nullptr && !command.views && !entersMode(command.id);
}

/// Whether the mesh may become another by this, or by the drag that begins with it.
bool mayChangeMesh(const Event& event) {
    if (editorState.subview != 0) return true;
    const Command* const command = commandOf(event);
    if (command != nullptr) return changesMesh(*command) && !movesInHistory(event);
    if (event.kind == EventKind::keyDown) return keyStep(event) != nullptr;
    return event.kind == EventKind::mouse && (event.buttons & ~button::middle) != 0;
}

bool readsMesh(const Event& event) {
    const Command* const command = commandOf(event);
    return command != nullptr
           && (command->escape == Escape::stopsReading || command->id == commandid::importMesh);
}

/// Most who read a mesh look at it first, and some do no more.
Snap snapAfter(const Event& event) {
    return readsMesh(event) ? Snap::beforeTheNextChange : Snap::now;
}

/// What may have become another in the mesh by this, or by the drag or in the list that it ends.
Changed changedBy(const Event& event, bool listed) {
    if (listed) return Changed::facesOnly;
    if (event.kind == EventKind::mouse) return changedByMode();
    const Command* const command = commandOf(event);
    if (command == nullptr) return Changed::anything;
    if (command->selects) return Changed::facesOnly;
    return changesMesh(*command) ? Changed::anything : Changed::current;
}

/// When the user was first seen to rest, by the clock of work; below 0: he is at work. A headless
/// run never rests: that clock stands still there.
double restsSince = -1;

/// What one command has released may serve the next one, as long as that may come soon.
void giveBackAfterRest() {
    constexpr double untilRested = 10;
    const double now = platform().workSeconds();
    if (restsSince < 0) restsSince = now;
    if (now - restsSince >= untilRested) giveBackMemory();
}

/// Whether the user begins with something else than what the notes tell of: the way of the mouse
/// from a press to the release is one act with them.
bool beginsAct(const Event& event) {
    if (event.kind != EventKind::mouse) return true;
    const unsigned held =
        (editorState.buttons & anyButton) | (drags.ofMiddle ? button::middle : 0U);
    return (event.buttons & ~held) != 0;
}

void noteAct(const Event& event) {
    restsSince = -1;
    if (Handling::depth == 1 && beginsAct(event)) forgetNotes();
    noteUser();
}

/// What is no part of the user's work and comes whatever the window shows. Whether it was that.
bool handledApart(const Event& event) {
    const bool atWork = Handling::depth > 1;
    if (event.kind == EventKind::idle) {
        if (atWork || dragRuns()) return true;
        saveAtRest();
        giveBackAfterRest();
        return true;
    }
    if (event.kind != EventKind::sessionEnd) return false;
    if (!atWork && dragRuns()) recordDrag();
    saveAtSessionEnd(atWork);
    return true;
}

/// Whether the user did something, more than to move the mouse.
bool isUsersAct(const Event& event) {
    constexpr EventKind kinds[] = {EventKind::keyDown, EventKind::wheel, EventKind::command,
                                   EventKind::drop};
    return std::find(std::begin(kinds), std::end(kinds), event.kind) != std::end(kinds)
           || (event.kind == EventKind::mouse && event.buttons != 0);
}

bool mayTakeLong(const Event& event) {
    const Command* const command = commandOf(event);
    return command != nullptr && command->takesLong;
}

void useStateFolder(const std::string& folder, int recoverySeconds) {
    stateFolder = folder;
    setRecoverySeconds(recoverySeconds);
}

/// Whatever way the handling of an event ends, the status line tells of it.
struct StatusLineAfter {
    ~StatusLineAfter() {
        if (Handling::depth != 1) return;
        try {
            updateStatusLine();
        } catch (const std::bad_alloc&) { // it says what it said before
        }
    }
};

} // namespace

void handleEvent(const Event& event) {
    const Handling handling;
    if (handledApart(event)) return;
    if (isUsersAct(event)) noteAct(event);
    const StatusLineAfter status;
    if (Handling::depth > 1) { // a part of the event outside
        if (event.kind == EventKind::paint) noteUncounted();
        dispatch(event, true);
        return;
    }
    if (dragRuns() && movesInHistory(event)) return;
    if (dragRuns() && endsDrag(event)) recordDrag();
    const std::string label = labelOf(event);
    platform().nameBoxes(label);
    const bool dragged = dragRuns();
    const bool listed = editorState.subview != 0;
    const bool commands = event.kind == EventKind::command && !listed;
    const bool wasEmpty = editorState.faces.live == 0;
    const Teller teller(commands ? commandOf(event) : nullptr);
    std::optional<LongWork> work;
    trackWork(event, work);
    if (mayChangeMesh(event)) completeNewestStep();
    if (mayTakeLong(event)) saveBeforeLongWork();
    workbench.wholeMeshWritten = workbench.meshRead = false;
    beginEvent(dragged || listed);
    const std::string_view step = dispatch(event, false);
    if (OB != nullptr) OB->settleLostArrays();
    const bool altered = endEvent();
    if (workbench.wholeMeshWritten && OB != nullptr && OB->changed == 0) dropRecovery();
    if (dragRuns()) {
        if (!dragged) countFaces(); // a press may select
        return;
    }
    // Its corners are numbers of points.
    if (commandOf(event) != nullptr && (altered || movesInHistory(event))) dropNewFace();
    // To remember a large mesh takes long by itself.
    tellTooLateToStop();
    moveProgress();
    // What alters the mesh in an open list is a step of its own; what was picked, when it closes.
    const bool ended = dragged || listed || mayChange(event);
    bool isStep = false;
    if (editorState.subview != 0 ? listed && altered : ended) {
        const std::string named = dragged ? dragStep() : label;
        isStep = recordStep(step.empty() ? named : std::string(step), snapAfter(event),
                            changedBy(event, listed));
    }
    if (ended || movesInHistory(event)) {
        countFaces();
        suitRendering(readsMesh(event), altered);
        const bool begun = readsMesh(event) && wasEmpty && editorState.faces.live > 0;
        if (workbench.meshRead || begun) refitBackgrounds();
    }
    if (listed && editorState.subview == 0 && OB != nullptr) tellSelection();
    teller.tell(altered);
    tellWhatCancelDid(isStep);
    if (editorState.subview == 0 && (ended || movesInHistory(event))) refreshMenuBar();
}

const Program& editorProgram() {
    static constexpr Program program = {handleEvent,    listCommands,  stateJson, writeDump,
                                        useStateFolder, setUndoMemory, locksHere};
    return program;
}

} // namespace polyfab
