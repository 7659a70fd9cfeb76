// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/display_commands.h"

#include "display/view.h"
#include "editor/state.h"
#include "mesh/edges.h"
#include "mesh/mesh.h"

namespace polyfab {

void findBadEdges() {
    forgetCurrentEdge(); // faces and corners get other numbers
    checkEdges(*OB, false, false, false);
    displayOptions.badEdges = true;
    stale.edges = true;
}

} // namespace polyfab
