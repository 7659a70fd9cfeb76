// SPDX-License-Identifier: GPL-3.0-or-later
// The affine map between world and screen positions that new points are placed with. The display
// sets it; the mesh only applies it.
#pragma once

#include "geometry/affine.h"

namespace polyfab {

struct Projection {
    AffineMap toScreen; ///< world -> (horizontal pixel, vertical pixel, depth)
    AffineMap toWorld;  ///< its inverse
};

inline Projection projection;

} // namespace polyfab
