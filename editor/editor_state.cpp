// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/editor_state.h"

#include "workbench/state.h"

namespace polyfab {

void resetEditorState() {
    editorState = EditorState();
    resetWorkbench();
}

} // namespace polyfab
