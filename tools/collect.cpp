// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/collect.h"

#include "mesh/garbage.h"
#include "mesh/stale.h"
#include "workbench/long_work.h"
#include "workbench/state.h"

namespace polyfab {

bool collectForTool(Mesh& mesh) {
    forgetCurrentEdge();
    stale.edges = true;
    const bool collected = collectGarbage(mesh);
    moveProgress();
    return collected;
}

} // namespace polyfab
