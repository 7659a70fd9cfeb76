// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/picture_layer.h"
#include "display/shading_data.h"
#include "geometry/vec3.h"
#include "picture/raster.h"

namespace polyfab {

/// Shades the pixels of a canvas at which the tiles of the data show triangles of this set; with
/// their pictures where there is a layer of such.
void shadeTiles(const ShadingData& data, const TriangleSet& set, const PictureLayer* layer,
                const Vec3& wayToLight, const Canvas& canvas);

} // namespace polyfab
