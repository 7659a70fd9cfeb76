// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/window.h"

#include "display/view.h"
#include "display/wireframe.h"
#include "editor/commands.h"
#include "editor/menus.h"
#include "editor/report.h"
#include "editor/state.h"
#include "formats/mesh_files.h"
#include "mesh/check.h"
#include "mesh/mesh.h"

#include <string_view>

namespace polyfab {
namespace {

void onCreate(const Event&) {
    createMesh();
    resizeView(platform().clientSize());
    platform().setMenuBar("POLYFAB", mainMenu());
    platform().setTitle(programName);
}

void onDestroy(const Event&) {
    if (OB == nullptr) return;
    if (const char* const fault = check(*OB)) {
        platform().message("bad image, so I am not free()'ing it", fault, Icon::exclamation);
        OB->clear(false); // nothing at exit may touch damaged arrays
    }
    destroyMesh();
}

void onResize(const Event&) {
    resizeView(platform().clientSize());
    platform().requestPaint();
}

void clearKeys(const Event&) { editorState.keys.fill(0); }

void onPaint(const Event&) { platform().present(drawPanes(*OB, platform().clientSize())); }

void onClose(const Event&) {
    if (editorState.busy) {
        platform().beep();
        platform().setTitle("Whoa there, I got a file open!!");
        return;
    }
    if (OB->changed
        && platform().question("you have not saved this object since you altered it last",
                               "do you want to exit?", Buttons::yesNo)
               != Choice::yes) {
        return;
    }
    platform().destroyWindow();
}

void setKey(int code, std::uint8_t state) {
    if (code >= 0 && code < 256) editorState.keys[static_cast<std::size_t>(code)] = state;
}

void onKeyDown(const Event& event) { setKey(event.key, 0xFF); }

void onKeyUp(const Event& event) {
    setKey(event.key, 0);
    constexpr std::string_view refreshing = "CVI";
    if (event.key > 0 && event.key < 128
        && refreshing.find(static_cast<char>(event.key)) != std::string_view::npos) {
        updateTitle();
    }
}

void onMouse(const Event& event) {
    EditorState& editor = editorState;
    const unsigned before = editor.history;
    editor.history = static_cast<std::uint8_t>((before << 2 | (event.buttons & 3)) & 0xF);
    const bool rightWasDown = (editor.history & 8) != 0;
    (rightWasDown ? editor.mouse.z : editor.mouse.x) = event.x;
    editor.mouse.y = event.y;
}

void repaintIfStale() {
    if (stale.points || stale.edges || stale.picture) platform().requestPaint();
}

void onCommand(const Event& event) {
    const Command* const command = findCommand(event.command);
    if (command == nullptr || command->handler == nullptr) return;
    command->handler();
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

struct Route {
    EventKind kind;
    void (*handle)(const Event&);
};

constexpr Route routes[] = {
    {EventKind::create, onCreate},       {EventKind::destroy, onDestroy},
    {EventKind::resize, onResize},       {EventKind::deactivate, clearKeys},
    {EventKind::menuOpening, clearKeys}, {EventKind::paint, onPaint},
    {EventKind::close, onClose},         {EventKind::keyDown, onKeyDown},
    {EventKind::keyUp, onKeyUp},         {EventKind::mouse, onMouse},
    {EventKind::command, onCommand},     {EventKind::drop, onDrop},
};

constexpr bool routesAreInOrder() {
    int expected = 0;
    for (const Route& route : routes) {
        if (static_cast<int>(route.kind) != expected++) return false;
    }
    return expected == static_cast<int>(EventKind::drop) + 1;
}

static_assert(routesAreInOrder(), "routes is indexed by the event's kind");

} // namespace

void handleEvent(const Event& event) { routes[static_cast<int>(event.kind)].handle(event); }

const Program& editorProgram() {
    static constexpr Program program = {handleEvent, listCommands, stateJson, dumpJson};
    return program;
}

} // namespace polyfab
