// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/picture_layer.h"

#include "display/view.h"
#include "geometry/projection.h"

#include <algorithm>
#include <cmath>

namespace polyfab {

PictureLayer::PictureLayer(const ShadingData& data, const Mesh& shown, bool left)
    : shading(data), mesh(shown), unitsPerPixel(data.grain / view.scale) {
    const auto& row = projection.toScreen.row[left ? 2 : 0];
    toViewer = Vec3{row[0], row[1], row[2]} * (1 / view.scale);
}

bool PictureLayer::lay(std::uint32_t triangle, LaidTexture& to) const {
    const ShownPicture& picture = shading.looks.picture(triangle);
    if (picture.texture == nullptr) return false;
    TexturePlace place[3];
    for (int k = 0; k < 3; ++k) {
        const std::uint32_t number = shading.list.texCoords[triangle].corner[k];
        if (number >= static_cast<std::uint32_t>(mesh.nt)) return false;
        const TexCoord& at = mesh.texcoords[number];
        const PicturePlacing& placing = picture.placing;
        place[k] = {at.u * placing.uScale + placing.uOffset,
                    at.v * placing.vScale + placing.vOffset};
    }
    return to.lay(place, picture.texture->levelFor(texels(triangle, picture)));
}

bool PictureLayer::hasHoles(std::uint32_t triangle) const {
    const Texture* const texture = shading.looks.picture(triangle).texture;
    return texture != nullptr && texture->hasHoles();
}

/// Those of the picture that a pixel shows.
double PictureLayer::texels(std::uint32_t triangle, const ShownPicture& picture) const {
    const Image& image = picture.texture->image();
    const double inPicture =
        std::abs(picture.placing.uScale * picture.placing.vScale) * image.width * image.height;
    const double slant = std::abs(cosineOf(shading.normals.flat[triangle], toViewer));
    return shading.densities[triangle] * inPicture * unitsPerPixel * unitsPerPixel
           / std::max(slant, 1e-6);
}

} // namespace polyfab
