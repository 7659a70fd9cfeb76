// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/collect.h"

#include "display/view.h"
#include "editor/long_work.h"
#include "editor/state.h"
#include "mesh/garbage.h"

namespace polyfab {

bool collectForTool(Mesh& mesh) {
    forgetCurrentEdge();
    stale.edges = true;
    const bool collected = collectGarbage(mesh);
    moveProgress();
    return collected;
}

} // namespace polyfab
