// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/state.h"

#include "platform/platform.h"

namespace polyfab {

void resetEditorState() { editorState = EditorState(); }

bool abortRequested() { return platform().escapeDown() || keyIsDown(key::escape); }

void updateTitle() {
    platform().setTitle(std::string(programName) + " [" + editorState.fileName + "] "
                        + editorState.modeName);
}

} // namespace polyfab
