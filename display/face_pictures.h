// SPDX-License-Identifier: GPL-3.0-or-later
// Which picture a face shows: its material's, else that of its group's texture map, else none.
#pragma once

#include "display/material_looks.h"
#include "mesh/mesh.h"
#include "picture/image.h"

#include <array>
#include <cstdint>
#include <vector>

namespace polyfab {

struct FacePicture {
    const Image* image = nullptr; ///< null: the face shows its material's colour
    PicturePlacing placing{};
};

/// The pictures of the faces of a mesh, to be made anew for each drawing: looking one up is then
/// only an index. For one thread at a time.
class FacePictures {
  public:
    /// May throw std::bad_alloc.
    explicit FacePictures(const Mesh& mesh);

    /// Decodes the picture when it is shown for the first time. One that can't be read is as good
    /// as none, which a note tells once.
    [[nodiscard]] const FacePicture& of(const Face& face);

  private:
    const Mesh& mesh;
    std::vector<const MaterialLook*> looks; ///< per material, null: none, or its picture is known
    std::vector<FacePicture> ofMaterials;
    std::array<FacePicture, 8> ofSlots;
};

/// The same for a single face of OB.
[[nodiscard]] const Image* pictureOf(const Face& face);

/// Counts up whenever some face may show another picture. As long as it stays, what an image
/// pointer leads to stays as well.
[[nodiscard]] std::uint64_t pictureVersion();

} // namespace polyfab
