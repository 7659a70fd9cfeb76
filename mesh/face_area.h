// SPDX-License-Identifier: GPL-3.0-or-later
// The areas of live faces: in space, and of what the screen shows of them.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

namespace polyfab {

/// A vector along the face's normal by its vector area, towards the side from which it is seen
/// anticlockwise: twice the area of the face at the size where its extent, the longest way from the
/// first corner along an axis, is 1. Zero or not a number for a face without extent.
[[nodiscard]] Vec3 scaledArea(const Face& face);

/// True when the corners lie on one point or one line as nearly as doubles can tell: twice the
/// vector area is at most 1e-12 of the square of the face's extent, or what rounding the positions
/// can make of it. A polygon whose loops run opposite ways and cancel out has no area either. A
/// face with a position that is no finite number has one.
[[nodiscard]] bool hasNoArea(const Face& face);

/// Area in square pixels, positive for a face that is seen clockwise. `across` is what runs to the
/// right: the left pane shows sx, the right one sz.
[[nodiscard]] double screenArea(const Face& face, double Point::*across = &Point::sx);

} // namespace polyfab
