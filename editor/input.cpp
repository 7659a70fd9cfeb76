// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/input.h"

#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "editor/recovery/recovery.h"
#include "mesh/mesh.h"
#include "workbench/state.h"

namespace polyfab {

void clearKeys() { workbench.keys.fill(0); }

void noteMouse(const Event& event) {
    EditorState& editor = editorState;
    const unsigned before = editor.buttons;
    editor.buttons = static_cast<std::uint8_t>((before << 2 | (event.buttons & 3)) & 0xF);
    const bool rightWasDown = (editor.buttons & 8) != 0;
    (rightWasDown ? editor.mouse.z : editor.mouse.x) = event.x;
    editor.mouse.y = event.y;
}

void closeUnlessRefused() {
    if (workbench.busy) {
        platform().beep();
        platform().setTitle("Whoa there, I got a file open!!");
        return;
    }
    if (sessionIsEnding()) {
        saveAtSessionEnd(false);
    } else if (isAltered()) {
        const Choice exit = platform().question(
            "you have not saved this object since you altered it last", "do you want to exit?",
            Buttons::yesNo, isAsRead() ? Choice::yes : Choice::no);
        if (exit != Choice::yes) return;
        noteUser();
    }
    platform().destroyWindow();
}

} // namespace polyfab
