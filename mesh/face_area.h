// SPDX-License-Identifier: GPL-3.0-or-later
// Whether a face has an area, by Newell's vector area of its polygon (Sutherland, Sproull and
// Schumacker, "A characterization of ten hidden-surface algorithms", 1974).
#pragma once

#include "mesh/mesh.h"

namespace polyfab {

/// True when the corners of the live face lie on one point or one line as nearly as doubles can
/// tell: twice the vector area is at most 1e-12 of the square of the face's extent (its longest way
/// from the first corner along an axis), or what rounding the positions can make of it. A polygon
/// whose loops run opposite ways and cancel out has no area either. A face with a position that is
/// no finite number has one.
[[nodiscard]] bool hasNoArea(const Face& face);

} // namespace polyfab
