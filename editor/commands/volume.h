// SPDX-License-Identifier: GPL-3.0-or-later
// The menu command that finds the volume within the selected faces.
#pragma once

namespace polyfab {

/// Says the volume that the selected live faces bound, in world units, and when they face inwards;
/// or that they bound none: along every edge as many of them must run one way as the other.
void tellVolume();

} // namespace polyfab
