// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/modes/drag.h"

#include "editor/editor_state.h"
#include "workbench/notes.h"

#include <utility>

namespace polyfab {
namespace {

/// The drag that runs, which no longer does: what it shows and asks at its end may bring events.
std::unique_ptr<Drag> takeDrag() {
    drags.held = false;
    return std::move(drags.drag);
}

void tell(const Drag& drag) {
    if (const std::string said = drag.said(); !said.empty()) note(said);
}

void finishDrag() {
    if (const auto drag = takeDrag()) {
        drag->finish();
        tell(*drag);
    }
}

} // namespace

void dragByMouse(const Event& event, const Press& press) {
    const unsigned now = editorState.buttons & anyButton;
    const unsigned before = editorState.buttons >> 2 & anyButton;
    if (before == 0) {
        finishDrag(); // its release was part of setting a settable point
        drags.held = now != 0;
        drags.step = press.step;
    }
    if (!drags.held) return;
    drags.held = now != 0;
    if ((now & press.buttons) == 0) {
        if (const auto drag = std::move(drags.drag)) {
            drag->drop(event);
            tell(*drag);
        }
        return;
    }
    if ((before & press.buttons) == 0 && press.begin != nullptr) drags.drag = press.begin(event);
    if (drags.drag) drags.drag->move(event);
}

void endDrag() {
    finishDrag();
    drags.ofMiddle.reset();
}

void cancelDrag() {
    if (const auto drag = takeDrag()) drag->cancel();
}

} // namespace polyfab
