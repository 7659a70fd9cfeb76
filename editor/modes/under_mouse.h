// SPDX-License-Identifier: GPL-3.0-or-later
// What the handling modes share: where the mouse is, and when a press with some movement is a drag.
#pragma once

#include "display/picking.h"
#include "display/view.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"

#include <cmath>
#include <optional>

namespace polyfab {

/// The pane position of the event, with all screen positions up to date.
[[nodiscard]] inline std::optional<PanePlace> pickingPlace(const Event& event) {
    if (stale.points) transformPoints(*OB);
    return placeInPane(platform().clientSize(), event.x, event.y);
}

/// Whether the mouse is off the place where the button went down by more than a hand trembles in a
/// click, along either axis.
[[nodiscard]] inline bool isDrag(double right, double down) {
    return std::abs(right) > look.tremble || std::abs(down) > look.tremble;
}

} // namespace polyfab
