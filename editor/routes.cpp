// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/routes.h"

#include "display/backgrounds.h"
#include "display/material_looks.h"
#include "display/pane_images.h"
#include "display/texture_slots.h"
#include "display/told.h"
#include "display/view.h"
#include "display/wireframe.h"
#include "editor/command_table.h"
#include "editor/context_menu.h"
#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "editor/input.h"
#include "editor/lists/subview.h"
#include "editor/menus.h"
#include "editor/modes/drag.h"
#include "editor/modes/handling_modes.h"
#include "editor/modes/modes.h"
#include "editor/modes/navigation.h"
#include "editor/modes/new_face.h"
#include "editor/modes/settable_points.h"
#include "editor/recovery/recovery.h"
#include "editor/tool_bar.h"
#include "formats/mesh_files.h"
#include "mesh/check.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "workbench/offer_in_place.h"
#include "workbench/recent_files.h"
#include "workbench/state.h"

#include <filesystem>
#include <new>
#include <string_view>
#include <system_error>

namespace polyfab {
namespace {

void onCreate(const Event&) {
    createMesh();
    if (OB == nullptr) throw std::bad_alloc();
    offerSavingInPlace();
    paneImages = PaneImages();
    resetTextureSlots();
    setMaterialLooks(nullptr);
    toldByDisplay.clear();
    resetBackgrounds();
    resetDrags();
    resizeView(platform().clientSize());
    startHistory();
    startRecovery();
    loadRecentFiles();
    startToolBar();
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
    resetBackgrounds();
}

void onResize(const Event&) {
    resizeView(platform().clientSize());
    platform().requestPaint();
}

void onLookChange(const Event&) {
    stale.picture = true;
    platform().requestPaint();
}

void onMenuOpening(const Event&) {
    clearKeys();
    updateGreying();
}

bool mouseDrags() { return dragRuns() || drags.ofMiddle != nullptr; }

void onPaint(const Event&) {
    const Markers markers{workbench.currentEdgeFace,
                          workbench.currentEdgeCorner,
                          workbench.settable,
                          editorState.rectangle,
                          editorState.newFace,
                          workbench.preview,
                          mouseDrags()};
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
    stale.picture |= pictureIsDraft() && !mouseDrags();
    if (stale.points || stale.edges || stale.picture) platform().requestPaint();
}

void onKeysLost(const Event&) {
    clearKeys();
    repaintIfStale();
}

/// What Escape does: a drag that runs is taken back before the corners of a new face are.
void takeBack() {
    if (!dragRuns()) dropNewFace();
    cancelDrag();
}

void onKeyDown(const Event& event) {
    noteKey(event);
    if (event.key == key::escape) takeBack();
    if (!navigateByKey(event.key)) handlingKeyDown(event.key);
    repaintIfStale();
}

void onMouse(const Event& event) {
    noteMouse(event);
    navigateByMouse(event);
    if (!settablePointPress(event)) modeMouse(event);
    contextMenuByMouse(event);
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
    std::error_code failure;
    if (recovered && !file.empty()
        && std::filesystem::absolute(file, failure) != workbench.fileName) {
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
    {EventKind::lookChange, onLookChange},
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

const Route& routeOf(const Event& event) { return routes[static_cast<int>(event.kind)]; }

} // namespace

bool endsDrag(const Event& event) { return routeOf(event).endsDrag; }

const char* dispatch(const Event& event, bool inside) try {
    if (event.kind == EventKind::close && inside && !workbench.busy) {
        // The command that waits for this box, or works on this mesh, goes on with it.
        platform().beep();
        platform().setTitle("Whoa there, I am in the middle of something!!");
        return "";
    }
    if (editorState.subview != 0 && event.kind != EventKind::destroy) {
        return handleInSubview(event);
    }
    const Route& route = routeOf(event);
    if (route.endsDrag) endDrag();
    route.handle(event);
    return "";
} catch (const std::bad_alloc&) {
    if (OB == nullptr) throw; // at the start, where nothing can be lost
    // What the user did so far is not to be lost for a table that found no room.
    platform().message(programName, "I can't get enough memory", Icon::exclamation);
    return "";
}

} // namespace polyfab
