// SPDX-License-Identifier: GPL-3.0-or-later
// What shaded panes are drawn from.
#pragma once

#include "display/shade_normals.h"
#include "display/surface_looks.h"
#include "display/triangle_list.h"
#include "picture/triangles.h"

#include <vector>

namespace polyfab {

struct ShadingData {
    TriangleList list;
    ShadeNormals normals;
    SurfaceLooks looks;
    std::vector<float> densities; ///< of pictures, while some face shows one
    bool isTextured = false;      ///< the list has texture coordinates
    int grain = 1;                ///< pixels to a side of what is shaded as one: 2 in drafts
    std::vector<RasterPoint> points;
    std::vector<float> cosines; ///< per smooth normal, of its angle with the light
    DepthTiles tiles;
};

[[nodiscard]] inline float cosineOf(const PackedNormal& normal, const Vec3& light) {
    const double sum = normal.x * light.x + normal.y * light.y + normal.z * light.z;
    return static_cast<float>(sum * (1 / PackedNormal::one));
}

} // namespace polyfab
