// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/window.h"

#include "display/pane_images.h"
#include "display/view.h"
#include "display/wireframe.h"
#include "editor/commands.h"
#include "editor/handling_modes.h"
#include "editor/input.h"
#include "editor/long_work.h"
#include "editor/menus.h"
#include "editor/modes.h"
#include "editor/navigation.h"
#include "editor/recovery.h"
#include "editor/report.h"
#include "editor/settable_points.h"
#include "editor/state.h"
#include "editor/subview.h"
#include "editor/undo.h"
#include "formats/mesh_files.h"
#include "io/state_folder.h"
#include "mesh/check.h"
#include "mesh/mesh.h"

#include <new>
#include <optional>
#include <string_view>

namespace polyfab {
namespace {

void onCreate(const Event&) {
    createMesh();
    paneImages = PaneImages();
    resetDrags();
    endNavigation();
    resizeView(platform().clientSize());
    startHistory();
    startRecovery();
    showMenuBar("POLYFAB");
    platform().setTitle(programName);
}

void onDestroy(const Event&) {
    endRecovery();
    endHistory();
    if (OB == nullptr) return;
    if (const char* const fault = check(*OB)) {
        platform().message("bad image, so I am not free()'ing it", fault, Icon::exclamation);
        OB->clear(false); // nothing at exit may touch damaged arrays
    }
    destroyMesh();
    paneImages = PaneImages();
}

void onResize(const Event&) {
    resizeView(platform().clientSize());
    platform().requestPaint();
}

void onKeysLost(const Event&) { clearKeys(); }

void onMenuOpening(const Event&) {
    clearKeys();
    updateCheckMarks();
}

void onPaint(const Event&) {
    const Markers markers{editorState.currentEdgeFace, editorState.currentEdgeCorner,
                          editorState.settable};
    platform().present(drawPanes(*OB, platform().clientSize(), markers));
}

void onClose(const Event&) { closeUnlessRefused(); }

void onKeyUp(const Event& event) {
    noteKey(event);
    constexpr std::string_view refreshing = "CVI";
    if (event.key > 0 && event.key < 128
        && refreshing.find(static_cast<char>(event.key)) != std::string_view::npos) {
        updateTitle();
    }
}

void repaintIfStale() {
    if (stale.points || stale.edges || stale.picture) platform().requestPaint();
}

void onKeyDown(const Event& event) {
    noteKey(event);
    if (event.key == key::escape) cancelDrag();
    if (!navigateByKey(event.key)) handlingKeyDown(event.key);
    repaintIfStale();
}

void onMouse(const Event& event) {
    noteMouse(event);
    navigateByMouse(event);
    if (!settablePointPress(event)) modeMouse(event);
    repaintIfStale();
}

void onWheel(const Event& event) {
    zoomByWheel(event);
    repaintIfStale();
}

void onCommand(const Event& event) {
    runCommand(event.command);
    repaintIfStale();
}

void onDrop(const Event& event) {
    if (event.paths.size() != 1) {
        platform().message("drag-and-drop", "one file at a time please", Icon::exclamation);
        return;
    }
    readNamedMeshFile(event.paths.front());
    repaintIfStale();
}

/// A mesh that came back must not be lost to the file: that can be read when it is saved.
void onStart(const Event& event) {
    const bool recovered = offerRecovery() == Recovered::mesh;
    const std::string file = event.paths.empty() ? "" : event.paths.front();
    if (!recovered && !file.empty()) readNamedMeshFile(file);
    if (recovered && !file.empty() && file != editorState.fileName) {
        platform().message("so that you don't lose what I brought back, I did not read", file,
                           Icon::none);
    }
    repaintIfStale();
}

struct Route {
    EventKind kind;
    void (*handle)(const Event&);
    bool endsDrag = false; ///< a drag that runs ends first, and keeps what it did
};

constexpr Route routes[] = {
    {EventKind::create, onCreate},
    {EventKind::destroy, onDestroy},
    {EventKind::resize, onResize, true},
    {EventKind::deactivate, onKeysLost, true},
    {EventKind::menuOpening, onMenuOpening},
    {EventKind::paint, onPaint},
    {EventKind::close, onClose, true},
    {EventKind::keyDown, onKeyDown},
    {EventKind::keyUp, onKeyUp},
    {EventKind::mouse, onMouse},
    {EventKind::wheel, onWheel},
    {EventKind::command, onCommand, true},
    {EventKind::drop, onDrop, true},
    {EventKind::start, onStart},
};

constexpr bool routesAreInOrder() {
    int expected = 0;
    for (const Route& route : routes) {
        if (static_cast<int>(route.kind) != expected++) return false;
    }
    return expected == static_cast<int>(EventKind::start) + 1;
}

static_assert(routesAreInOrder(), "routes is indexed by the event's kind");

/// Counts the events that are being handled, one inside the other.
struct Handling {
    Handling() { ++depth; }
    ~Handling() { --depth; }
    static inline int depth = 0;
};

const Route& routeOf(const Event& event) { return routes[static_cast<int>(event.kind)]; }

void dispatch(const Event& event) try {
    if (event.kind == EventKind::close && Handling::depth > 1 && !editorState.busy) {
        // The command that waits for this box, or works on this mesh, goes on with it.
        platform().beep();
        platform().setTitle("Whoa there, I am in the middle of something!!");
        return;
    }
    if (editorState.subview != 0 && event.kind != EventKind::destroy) {
        handleInSubview(event);
        return;
    }
    const Route& route = routeOf(event);
    if (route.endsDrag) {
        endDrag();
        endNavigation();
    }
    route.handle(event);
} catch (const std::bad_alloc&) {
    // What the user did so far is not to be lost for a table that found no room.
    platform().message(programName, "I can't get enough memory", Icon::exclamation);
}

constexpr int readFileCommand = 256; ///< what a drop and the start amount to

bool readsFile(const Event& event) {
    return event.kind == EventKind::drop || event.kind == EventKind::start;
}

/// Without the marks of mnemonic letters.
std::string plain(std::string text) {
    std::erase(text, '&');
    return text;
}

/// What the menu calls the step that the event may lead to.
std::string labelOf(const Event& event) {
    constexpr int homeKey = 36;
    if (editorState.subview != 0) return plain(editorState.modeName) + " list";
    if (readsFile(event)) return plain(findCommand(readFileCommand)->label);
    if (event.kind == EventKind::keyDown && event.key == homeKey) return "box";
    if (event.kind != EventKind::command) return plain(editorState.modeName);
    const Command* const command = findCommand(event.command);
    return command != nullptr ? plain(command->label) : "";
}

bool movesInHistory(const Event& event) {
    return event.kind == EventKind::command
           && (event.command == undoCommand || event.command == redoCommand);
}

/// The drag that runs ends and is a step, before something else begins.
void recordDrag() {
    beginEvent(true);
    endDrag();
    endEvent();
    recordStep(plain(editorState.modeName));
}

/// The progress of a command or of the read that a drop is; nothing else is to last.
void trackWork(const Event& event, std::optional<LongWork>& work) {
    if (!readsFile(event) && event.kind != EventKind::command) return;
    const Command* const command = findCommand(readsFile(event) ? readFileCommand : event.command);
    if (command == nullptr) return;
    const bool noUndo = command->escape == Escape::stopsReading && !undoIsOn();
    work.emplace(plain(command->label), noUndo ? Escape::stops : command->escape);
}

/// Whether there may be something new to come back from, outside drags and lists. A key that
/// changes something shows it; a press that is no drag sets a settable point.
bool mayChange(const Event& event) {
    if (event.kind == EventKind::command) return !movesInHistory(event);
    if (event.kind == EventKind::mouse) return leftPressed();
    if (event.kind == EventKind::keyDown) return stale.points || stale.edges || stale.picture;
    return readsFile(event);
}

/// What is no part of the user's work and comes whatever the window shows. Whether it was that.
bool handledApart(const Event& event) {
    const bool atWork = Handling::depth > 1;
    if (event.kind == EventKind::idle) {
        if (!atWork && !dragRuns()) saveAtRest();
        return true;
    }
    if (event.kind != EventKind::sessionEnd) return false;
    if (!atWork && dragRuns()) recordDrag();
    saveAtSessionEnd(atWork);
    return true;
}

bool mayTakeLong(const Event& event) {
    return readsFile(event) || (event.kind == EventKind::command && runsLong(event.command));
}

void useStateFolder(const std::string& folder, int recoverySeconds) {
    stateFolder = folder;
    setRecoverySeconds(recoverySeconds);
}

} // namespace

void handleEvent(const Event& event) {
    const Handling handling;
    if (handledApart(event)) return;
    if (Handling::depth > 1) return dispatch(event); // a part of the event outside
    if (dragRuns() && movesInHistory(event)) return;
    if (dragRuns() && routeOf(event).endsDrag) recordDrag();
    const std::string label = labelOf(event);
    const bool dragged = dragRuns();
    const bool listed = editorState.subview != 0;
    std::optional<LongWork> work;
    trackWork(event, work);
    if (mayTakeLong(event)) saveBeforeLongWork();
    editorState.wholeMeshWritten = false;
    beginEvent(dragged || listed);
    dispatch(event);
    if (OB != nullptr) OB->settleLostArrays();
    const bool altered = endEvent();
    if (editorState.wholeMeshWritten && OB != nullptr && OB->changed == 0) dropRecovery();
    if (dragRuns()) return;
    // To remember a large mesh takes long by itself.
    tellTooLateToStop();
    moveProgress();
    // What alters the mesh in an open list is a step of its own; what was picked, when it closes.
    const bool ended = dragged || listed || mayChange(event);
    if (editorState.subview != 0 ? listed && altered : ended) recordStep(label);
    if (editorState.subview == 0 && (ended || movesInHistory(event))) refreshMenuBar();
}

const Program& editorProgram() {
    static constexpr Program program = {handleEvent, listCommands, stateJson, dumpJson,
                                        useStateFolder};
    return program;
}

} // namespace polyfab
