// SPDX-License-Identifier: GPL-3.0-or-later
// What the picture of the mesh lacks: the flags that tools leave for the display.
#pragma once

namespace polyfab {

/// What has to be made again before the next picture. Whoever changes a thing raises its flag.
struct Stale {
    bool points = true;    ///< world positions or the view changed: transform all points again
    bool edges = true;     ///< faces were added, removed or changed
    bool picture = true;   ///< drawn anew, whatever else is up to date
    bool selection = true; ///< other faces are selected; the picture is to be drawn anew, too
};

inline Stale stale;

/// Faces were selected or unselected, and no more.
inline void noteSelection() { stale.selection = stale.picture = true; }

} // namespace polyfab
