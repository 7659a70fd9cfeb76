// SPDX-License-Identifier: GPL-3.0-or-later
// What Shift and Ctrl make of a selection by the mouse.
#pragma once

#include "mesh/faces.h"
#include "mesh/stale.h"
#include "platform/platform.h"
#include "workbench/notes.h"
#include "workbench/state.h"

#include <cstdint>

namespace polyfab {

/// What becomes of an element that was selected or not, and is meant or not.
using Combine = bool (*)(bool was, bool meant);

/// With Shift down what is meant is added, with Ctrl it is taken away; else nothing else is kept.
[[nodiscard]] inline Combine combineByKeys() {
    if (keyIsDown(key::shift)) return [](bool was, bool meant) { return was || meant; };
    if (keyIsDown(key::ctrl)) return [](bool was, bool meant) { return was && !meant; };
    return [](bool, bool meant) { return meant; };
}

/// Selects or unselects each live face, which isMeant(face) says to be meant or not, and tells how
/// many are selected then.
template <typename IsMeant>
void combineSelection(Combine combine, IsMeant isMeant) {
    std::int64_t live = 0, selected = 0;
    for (Face& face : liveFaces(*OB)) {
        face.selected = combine(face.selected != 0, isMeant(face)) ? 1 : 0;
        ++live;
        selected += face.selected;
    }
    noteSelection();
    note(selectionText(selected, live));
}

} // namespace polyfab
