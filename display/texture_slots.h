// SPDX-License-Identifier: GPL-3.0-or-later
// The pictures of the eight texture maps, which groups name by number.
#pragma once

#include "picture/image.h"

#include <array>
#include <memory>
#include <string>

namespace polyfab {

struct TextureSlot {
    std::string path;                     ///< of its file; "": empty
    std::shared_ptr<const Image> image{}; ///< null: empty
};

inline constexpr int textureSlotCount = 8;
using TextureSlots = std::array<TextureSlot, textureSlotCount>;

[[nodiscard]] const TextureSlots& textureSlots();

/// Puts a picture into the slot; the panes have to be drawn anew.
void setTextureSlot(int number, TextureSlot slot);

/// Empties all slots, as they are at start-up.
void resetTextureSlots();

} // namespace polyfab
