// SPDX-License-Identifier: GPL-3.0-or-later
// What the surface of each triangle shows: its material's colour or picture, or the picture of the
// texture map that its group names.
#pragma once

#include "display/face_pictures.h"
#include "display/triangle_list.h"
#include "picture/texture.h"

#include <array>
#include <cstdint>
#include <map>
#include <vector>

namespace polyfab {

/// What colours are averaged with where a face is seen from behind, and where it is not selected.
inline constexpr std::uint32_t behindColor = 0xB05A00, unselectedColor = 0x909090;

/// Red, green and blue, not rounded.
using Color = std::array<float, 3>;

struct ShownPicture {
    const Texture* texture = nullptr; ///< null: none
    PicturePlacing placing{};
};

class SurfaceLooks {
  public:
    /// Finds the pictures that faces show, which are decoded for it, as far as the options want
    /// them. May throw std::bad_alloc.
    void findPictures(const Mesh& mesh);
    /// The materials' colours.
    void findColors(const Mesh& mesh);
    /// What each triangle has of that.
    void findTriangles(const Mesh& mesh, const TriangleList& list);

    [[nodiscard]] bool hasPictures() const { return !textures.empty(); }
    [[nodiscard]] bool hasHoles() const { return holes; }
    /// Whether what was found is for this many materials and triangles.
    [[nodiscard]] bool fit(const Mesh& mesh, const TriangleList& list) const {
        return ofMaterials.size() == static_cast<std::size_t>(mesh.nmat) + 1
               && ofTriangle.size() == list.triangles.size();
    }

    /// Where what color and picture need of a triangle stands.
    [[nodiscard]] const void* record(std::uint32_t triangle) const { return &ofTriangle[triangle]; }
    [[nodiscard]] const Color& color(std::uint32_t triangle, bool behind) const {
        return colors[(ofTriangle[triangle] & colorBits) + (behind ? 1 : 0)];
    }
    [[nodiscard]] bool isSelected(std::uint32_t triangle) const {
        return (ofTriangle[triangle] & unselected) == 0;
    }
    [[nodiscard]] const ShownPicture& picture(std::uint32_t triangle) const {
        const std::uint32_t bits = ofTriangle[triangle];
        const ShownPicture& own = ofMaterials[(bits & colorBits) >> 2];
        return own.texture != nullptr ? own : ofSlots[bits >> slotShift];
    }

  private:
    static constexpr std::uint32_t unselected = 2, colorBits = (1 << 20) - 1;
    static constexpr int slotShift = 20, slots = 8;

    ShownPicture shown(const FacePicture& picture);

    /// Per triangle, the place of its first colour; above those bits the texture map of its group,
    /// 8: none.
    std::vector<std::uint32_t> ofTriangle;
    /// Four of each material: selected or not, each from the front and from behind. The first ones
    /// are of faces whose material is not there.
    std::vector<Color> colors;
    std::vector<ShownPicture> ofMaterials;       ///< in the same order
    std::array<ShownPicture, slots + 1> ofSlots; ///< the last one: none
    std::map<const Image*, Texture> textures;    ///< of the pictures of this version
    std::uint64_t version = 0;
    bool holes = false;
};

[[nodiscard]] inline Color colorOf(std::uint32_t rgb) {
    return {static_cast<float>(rgb >> 16 & 255), static_cast<float>(rgb >> 8 & 255),
            static_cast<float>(rgb & 255)};
}

[[nodiscard]] inline Color average(const Color& a, const Color& b) {
    return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
}

/// What a face of that colour shows when it is not selected, and from behind.
[[nodiscard]] inline Color tinted(const Color& color, bool selected, bool behind) {
    if (selected && !behind) return color;
    const Color side = behind ? average(color, colorOf(behindColor)) : color;
    return selected ? side : average(side, colorOf(unselectedColor));
}

} // namespace polyfab
