// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/context_menu.h"

#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "editor/modes/modes.h"
#include "editor/modes/navigation.h"
#include "editor/modes/under_mouse.h"

#include <iterator>
#include <utility>

namespace polyfab {
namespace {

/// Few enough for the height of a screen on which everything is large; 0: a separator.
constexpr int commands[] = {undoCommand,
                            redoCommand,
                            0,
                            290,
                            291,
                            2031,
                            2034,
                            2036,
                            2035,
                            0,
                            299,
                            389,
                            2038,
                            0,
                            fitCommand,
                            fitSelectedCommand,
                            354,
                            0,
                            358,
                            349,
                            selectByRectangle,
                            351,
                            0,
                            2070};

} // namespace

void contextMenuByMouse(const Event& event) {
    RightPress& press = editorState.rightPress;
    const unsigned now = event.buttons, before = editorState.buttons >> 2 & 3U;
    if (now == button::right && before == 0) {
        press = {!modeUsesRightButton(), event.x, event.y};
    } else if (now == button::right) {
        press.isClick = press.isClick && !isDrag(event.x - press.x, event.y - press.y);
    } else if (std::exchange(press.isClick, false) && now == 0 && before == button::right) {
        platform().openContextMenu({std::begin(commands), std::end(commands)});
    }
}

} // namespace polyfab
