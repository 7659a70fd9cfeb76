// SPDX-License-Identifier: GPL-3.0-or-later
// The directions by which triangles are lit, kept until positions or normals change.
#pragma once

#include "display/triangle_list.h"
#include "geometry/vec3.h"

#include <cstdint>
#include <vector>

namespace polyfab {

/// A unit vector in steps of 1/32767, or zero.
struct PackedNormal {
    static constexpr double one = 32767;
    std::int16_t x, y, z;
};

struct ShadeNormals {
    std::vector<PackedNormal> flat;   ///< per triangle, that of its face
    std::vector<PackedNormal> smooth; ///< those of the mesh, then those that it lacks
    bool lostSome = false;            ///< corners whose normals in the mesh had no direction
};

/// Works out `flat`: the normal of the face, zero where it has none. May throw std::bad_alloc.
void findFlatNormals(const Mesh& mesh, const TriangleList& list, ShadeNormals& normals);

/// Works out `smooth`, from `flat`, and gives each corner in the list its place there: the normal
/// that the mesh gives it, else the mean of those of the faces around its point that lie within 45
/// degrees of its own, by their angles there. So what is round looks round, and a cube stays a
/// cube. Around a point with thousands of triangles those that face about the same count as one.
/// May throw std::bad_alloc.
void findSmoothNormals(const Mesh& mesh, TriangleList& list, ShadeNormals& normals);

} // namespace polyfab
