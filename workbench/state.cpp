// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbench/state.h"

#include "mesh/faces.h"
#include "mesh/mesh.h"
#include "platform/platform.h"
#include "workbench/long_work.h"

namespace polyfab {

void resetWorkbench() { workbench = Workbench(); }

void noteKey(const Event& event) {
    if (event.key < 0 || event.key >= static_cast<int>(workbench.keys.size())) return;
    workbench.keys[static_cast<std::size_t>(event.key)] =
        event.kind == EventKind::keyDown ? 0xFF : 0;
}

bool currentEdgeIsLive() {
    const int face = workbench.currentEdgeFace, corner = workbench.currentEdgeCorner;
    return hasFace(*OB, face) && corner >= 0 && corner < OB->faces[face].n;
}

void dropStaleEdge() {
    if (!currentEdgeIsLive()) forgetCurrentEdge();
}

bool abortRequested() {
    moveProgress();
    return platform().escapeDown() || keyIsDown(key::escape);
}

void updateTitle() {
    platform().setTitle(std::string(programName) + " [" + workbench.fileName + "] "
                        + workbench.modeName);
}

} // namespace polyfab
