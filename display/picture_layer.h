// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "display/shading_data.h"
#include "geometry/vec3.h"
#include "mesh/mesh.h"

namespace polyfab {

/// Lays the pictures of triangles on them as a pane shows them.
class PictureLayer {
  public:
    PictureLayer(const ShadingData& data, const Mesh& shown, bool left);

    /// False when the triangle shows none.
    bool lay(std::uint32_t triangle, LaidTexture& to) const;
    [[nodiscard]] bool hasHoles(std::uint32_t triangle) const;

    /// Calls for what `lay` reads of the mesh.
    [[gnu::always_inline]] inline void callFor(std::uint32_t texCoord) const {
        __builtin_prefetch(&mesh.texcoords[texCoord]);
    }

  private:
    [[nodiscard]] double texels(std::uint32_t triangle, const ShownPicture& picture) const;

    const ShadingData& shading;
    const Mesh& mesh;
    double unitsPerPixel;
    Vec3 toViewer;
};

} // namespace polyfab
