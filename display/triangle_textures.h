// SPDX-License-Identifier: GPL-3.0-or-later
// What triangles have to do with the places of a picture, kept until positions or texture
// coordinates change.
#pragma once

#include "display/triangle_list.h"
#include "picture/texture.h"

#include <vector>

namespace polyfab {

struct TriangleTextures {
    std::vector<TexturePlace> places; ///< by the numbers in the list
    /// Per triangle, how many times its face shows a picture in a square unit of space. All of a
    /// face have the same, so that no picture changes its sharpness inside of one.
    std::vector<float> densities;
};

/// Works them out for a list with texture coordinates. May throw std::bad_alloc.
void findTextures(const Mesh& mesh, const TriangleList& list, TriangleTextures& textures);

} // namespace polyfab
