// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/history/editor_part.h"

#include "workbench/state.h"

namespace polyfab {

EditorPart presentPart() {
    const EditorState& editor = editorState;
    return {editor.settable,
            box,
            view,
            editor.currentEdgeFace,
            editor.currentEdgeCorner,
            editor.fileName,
            editor.lastChosen};
}

void restorePicks(const EditorPart& part) {
    editorState.settable = part.settable;
    editorState.currentEdgeFace = part.edgeFace;
    editorState.currentEdgeCorner = part.edgeCorner;
}

void restoreFileName(const EditorPart& part) {
    editorState.fileName = part.fileName;
    editorState.lastChosen = part.lastChosen;
}

void restoreView(const EditorPart& part) {
    const Size client = view.client;
    view = part.view;
    box = part.box;
    applyView();
    const Size then = part.view.client;
    if (client.width != then.width || client.height != then.height) resizeView(client);
}

} // namespace polyfab
