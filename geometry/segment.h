// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "geometry/vec3.h"

namespace polyfab {

/// A straight line between two places of the world.
struct Segment {
    Vec3 from, to;
};

} // namespace polyfab
