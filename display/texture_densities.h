// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/triangle_list.h"

#include <vector>

namespace polyfab {

/// Per triangle of a list with texture coordinates, how many times its face shows a picture in a
/// square unit of space. All of a face have the same, so that no picture changes its sharpness
/// inside of one. May throw std::bad_alloc.
void findTextureDensities(const Mesh& mesh, const TriangleList& list,
                          std::vector<float>& densities);

} // namespace polyfab
