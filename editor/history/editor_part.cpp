// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/history/editor_part.h"

#include "workbench/state.h"

namespace polyfab {

EditorPart presentPart() {
    const Workbench& bench = workbench;
    return {bench.settable,
            box,
            view,
            bench.currentEdgeFace,
            bench.currentEdgeCorner,
            bench.fileName,
            bench.lastChosen,
            bench.home,
            materialLooks()};
}

void restorePicks(const EditorPart& part) {
    workbench.settable = part.settable;
    setMaterialLooks(part.looks);
    workbench.currentEdgeFace = part.edgeFace;
    workbench.currentEdgeCorner = part.edgeCorner;
}

void restoreFileName(const EditorPart& part) {
    workbench.fileName = part.fileName;
    workbench.lastChosen = part.lastChosen;
    workbench.home = part.home;
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
