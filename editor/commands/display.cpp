// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/commands/display.h"

#include "mesh/edges.h"
#include "mesh/mesh.h"
#include "mesh/stale.h"
#include "workbench/state.h"

namespace polyfab {

void findBadEdges() {
    forgetCurrentEdge(); // faces and corners get other numbers
    checkEdges(*OB, false, false, false);
    displayOptions.badEdges = true;
    stale.edges = true;
}

} // namespace polyfab
