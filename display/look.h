// SPDX-License-Identifier: GPL-3.0-or-later
// How everything in the panes looks. Colours hold on the light background for the colour-blind too;
// what may lie side by side also differs in width or dash, so that no colour is needed.
#pragma once

#include "display/raster.h"

#include <cstdint>

namespace polyfab {

/// Colours are 0xFFRRGGBB.
struct Look {
    std::uint32_t background = 0xFFFAFAF7;
    std::uint32_t divider = 0xFF9AA3AE;
    Stroke selected{0xFF17456B};
    Stroke unselected{0xFF5F6B78, 1, 0x0F0F};
    Stroke unselectedGrey{0xFF9DA5AD};
    Stroke loose{0xFF007A5A, 3, 0x0FFF};
    Stroke bad{0xFFC23B00, 3};
    Stroke currentFace{0xFF8E2A8B, 3, 0x0707};
    Stroke currentEdge{0xFF8E2A8B, 5};
    Stroke currentVertex{0xFF8E2A8B, 3};
    Stroke vertex{0xFF17456B};
    Stroke normal{0xFF1B7FA8};
    Stroke box{0xFF7A5200, 1, 0x03FF};
    Stroke settable{0xFF202020, 3};
    Stroke axes[3] = {{0xFFB03A00, 1}, {0xFF00704F, 1}, {0xFF1F4FBF, 1}};
    Stroke grid{0xFFE2E5E8};
    std::uint32_t gridText = 0xFF7A828B;
    std::uint32_t faceNumber = 0xFF7A3C00;
    std::uint32_t vertexNumber = 0xFF303840;
};

inline constexpr Look look;

} // namespace polyfab
