// SPDX-License-Identifier: GPL-3.0-or-later
// Polygons cut into triangles for the picture; the mesh keeps its faces.
#pragma once

#include "geometry/orientation.h"
#include "geometry/vec3.h"

#include <span>
#include <vector>

namespace polyfab {

/// The corners of one triangle, by their places in the list of those of the polygon.
struct CutTriangle {
    int corner[3];
};

/// Cuts a polygon of four or more corners: a quad by the diagonal that lies inside (the shorter one
/// if both do), others by clipping ears in the plane of the polygon. The cut depends on positions,
/// and on the order only where a position comes twice: with whatever corner the list begins and
/// whichever way it runs, the triangles are the same. They run as the list does. A polygon that
/// crosses itself is cut somehow; corners in a line give triangles without area.
class PolygonCutter {
  public:
    /// The triangles, valid until the next call. May throw std::bad_alloc.
    const std::vector<CutTriangle>& cut(std::span<const Vec3> corners);

  private:
    void cutQuad(std::span<const Vec3> corners);
    void putInOrder(std::span<const Vec3> corners);
    void flatten(std::span<const Vec3> corners);
    void clipFew();
    void clipMany();
    void add(int a, int b, int c);
    double area(int a, int b, int c) const;
    bool isEar(int corner) const;
    void noteBend(int corner);
    void clip(int corner);

    std::vector<CutTriangle> triangles;
    // By place in the order that the cut goes by:
    std::vector<int> order; ///< which corner it is
    std::vector<Vec2> flat;
    std::vector<int> before, after; ///< neighbours among those that are left
    std::vector<char> bendsInwards;
    std::vector<int> bays; ///< those that did at first
    bool turned = false;   ///< the order runs against the list
};

} // namespace polyfab
