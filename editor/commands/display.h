// SPDX-License-Identifier: GPL-3.0-or-later
// The switches of the display menu.
#pragma once

#include "display/options.h"
#include "mesh/stale.h"

namespace polyfab {

/// Throws one switch.
template <bool DisplayOptions::*option>
void flip() {
    displayOptions.*option = !(displayOptions.*option);
    // Which faces face away is worked out with the list of edges.
    constexpr bool changesEdges = option == &DisplayOptions::hideFacingAway;
    (changesEdges ? stale.edges : stale.picture) = true;
}

template <bool DisplayOptions::*option>
[[nodiscard]] bool isOn() {
    return displayOptions.*option;
}

/// Collects the garbage, marks the bad edges anew and shows them. There is no current edge
/// afterwards.
void findBadEdges();

} // namespace polyfab
