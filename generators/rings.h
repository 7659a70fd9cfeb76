// SPDX-License-Identifier: GPL-3.0-or-later
// Surfaces that are a row of rings of points, each joined to the next by faces.
#pragma once

#include "generators/shape.h"
#include "geometry/frame.h"
#include "geometry/turn.h"

#include <cstdint>
#include <span>
#include <vector>

namespace polyfab {

/// Points of a shape by number; one that stands for all stands there for each.
struct Ring {
    std::vector<std::int32_t> points;
    std::int32_t texture = 0; ///< the first of its texture places, one more than points
};

/// Gives the ring texture places, one for each point and one where the first comes again, `v` up.
/// Nothing in a shape without texture.
void addTexture(Shape& shape, Ring& ring, double v);

/// Adds a face between each two neighbours of one ring and those of the next; it looks outwards
/// where the rings run anticlockwise as seen from the second one. Of points that both rings share
/// come triangles, or no face at all.
void joinRings(Shape& shape, const Ring& from, const Ring& to);

/// A circle: where it is, how large, and how far up the texture.
struct Circle {
    Vec3 centre;
    double radius; ///< 0: a single point
    double v;
};

/// Adds a surface of circles around the frame's w, each farther along it than the one before. It
/// ends in a point where the first or last circle is one, otherwise in a flat face.
void addLathe(Shape& shape, const Frame& frame, std::span<const Circle> circles,
              const std::vector<Turn>& around);

void addSphere(Shape& shape, const Vec3& centre, double radius, int around, int up);

/// From one end to the other, with a radius at each; of one of them 0, a cone.
void addCylinder(Shape& shape, const Vec3& from, const Vec3& to, double radius1, double radius2,
                 int sides);

/// The half spheres stand beyond both ends. `rings`: of each, the rim included.
void addRoundedCylinder(Shape& shape, const Vec3& from, const Vec3& to, double radius, int sides,
                        int rings);

/// Around an axis of this direction; `across` points around the thickness.
void addTorus(Shape& shape, const Vec3& centre, const Vec3& axis, double radius, double thickness,
              int around, int across);

} // namespace polyfab
