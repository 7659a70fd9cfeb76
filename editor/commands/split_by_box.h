// SPDX-License-Identifier: GPL-3.0-or-later
// Splitting the selected faces at planes of the box, which turn with the view. Axes: 0 x, 1 y, 2 z
// of the screen.
#pragma once

namespace polyfab {

/// At the larger of the two cut-offs.
void splitAtBoxMaximum(int axis);

/// Asks for a number of intervals between the cut-offs and splits at both ends of each.
void splitAtBoxIntervals(int axis);

} // namespace polyfab
