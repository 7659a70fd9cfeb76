// SPDX-License-Identifier: GPL-3.0-or-later
// Which way a face looks, and the angle between two faces.
#pragma once

#include "geometry/vec3.h"
#include "mesh/mesh.h"

#include <cmath>

namespace polyfab {

/// The unit normal of the triangle, or zero where it can't be told from what rounding makes of
/// corners in a line.
[[nodiscard]] Vec3 triangleNormal(const Vec3& a, const Vec3& b, const Vec3& c);

/// The unit normal of a live face, towards the side from which its corners are seen anticlockwise.
/// A face of other than three corners takes the directions of the triangles between its sides and
/// the mean of its corners, each counting the same. Zero for a face without a direction: corners in
/// a line or in one place, fewer than three, positions that are not finite or, in a face of more
/// than three corners, have a sum that is not.
[[nodiscard]] Vec3 faceNormal(const Face& face);

inline const double pi = 4 * std::atan(1.0);

/// The angle in radians between two sides of a triangle, by the law of cosines, of the squared
/// lengths of the side opposite to it and of the two. NaN when a length is zero or not finite.
[[nodiscard]] double angleOpposite(double opposite, double side1, double side2);

/// The angle in degrees, 0 to 180, between two unit normals: 0 when the faces are flat to each
/// other, and also when one of them is zero, so that a sliver goes with its neighbours.
[[nodiscard]] double angleBetween(const Vec3& normal1, const Vec3& normal2);

} // namespace polyfab
