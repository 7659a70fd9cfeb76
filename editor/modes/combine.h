// SPDX-License-Identifier: GPL-3.0-or-later
// What Shift and Ctrl make of a selection by the mouse.
#pragma once

#include "platform/platform.h"
#include "workbench/state.h"

namespace polyfab {

/// What becomes of an element that was selected or not, and is meant or not.
using Combine = bool (*)(bool was, bool meant);

/// With Shift down what is meant is added, with Ctrl it is taken away; else nothing else is kept.
[[nodiscard]] inline Combine combineByKeys() {
    if (keyIsDown(key::shift)) return [](bool was, bool meant) { return was || meant; };
    if (keyIsDown(key::ctrl)) return [](bool was, bool meant) { return was && !meant; };
    return [](bool, bool meant) { return meant; };
}

} // namespace polyfab
