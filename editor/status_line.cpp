// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/status_line.h"

#include "display/told.h"
#include "editor/command_table.h"
#include "editor/editor_state.h"
#include "editor/history/undo.h"
#include "editor/lists/name_list.h"
#include "editor/modes/drag.h"
#include "editor/modes/modes.h"
#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <utility>

namespace polyfab {
namespace {

std::string left() {
    std::string said = drags.drag ? drags.drag->said() : "";
    if (!said.empty()) return said;
    if (!notes().empty()) return notes();
    if (editorState.subview != 0) {
        return "click a name: pick it and close - Ctrl+click: pick more - right click: rename - "
               "Shift+letter: go to a name - Esc: close";
    }
    const std::string mode = workbench.modeName.empty() ? "default mode" : workbench.modeName;
    const std::string help = modeHelp();
    return plainLabel(mode) + (help.empty() ? "" : " - " + help);
}

std::string right() {
    const FaceCounts& faces = editorState.faces;
    const std::string shown = editorState.subview != 0 ? nameListRange()
                                                       : selectionText(faces.selected, faces.live)
                                                             + "   " + OB->currentGroupName()
                                                             + " / " + OB->currentMaterialName();
    return shown + (isAltered() ? "   altered" : "");
}

} // namespace

void noteUncounted() {
    editorState.uncounted = editorState.uncounted || stale.edges || stale.selection;
}

void countFaces() {
    noteUncounted();
    if (!std::exchange(editorState.uncounted, false)) return;
    FaceCounts& faces = editorState.faces;
    faces = {};
    if (OB == nullptr) return;
    for (const Face& face : liveFaces(*OB)) {
        ++faces.live;
        faces.selected += face.selected != 0 ? 1 : 0;
    }
}

void updateStatusLine() {
    for (const std::string& text : std::exchange(toldByDisplay, {})) note(text);
    if (OB != nullptr) platform().setStatusLine({left(), right()});
}

void toggleStatusLine() {
    editorState.statusLine = !editorState.statusLine;
    platform().showStatusLine(editorState.statusLine);
}

bool statusLineIsShown() { return editorState.statusLine; }

} // namespace polyfab
