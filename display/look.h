// SPDX-License-Identifier: GPL-3.0-or-later
// How everything in the panes looks. Colours hold on their background for the colour-blind too;
// what may lie side by side also differs in width or dash, so that no colour is needed.
#pragma once

#include "picture/raster.h"
#include "platform/platform.h"

#include <cstdint>

namespace polyfab {

/// Colours are 0xFFRRGGBB, sizes device pixels.
struct Look {
    std::uint32_t background = 0xFFFAFAF7;
    std::uint32_t divider = 0xFF868F98;
    Stroke selected{0xFF17456B};
    Stroke unselected{0xFF9AA3AC};
    Stroke unselectedGrey{0xFF868F98, 1, 0x77777777};
    Stroke loose{0xFF007A5A, 3, 0x0FFF0FFF};
    Stroke bad{0xFFC23B00, 3};
    Stroke currentFace{0xFF8E2A8B, 3, 0x07070707};
    Stroke currentEdge{0xFF8E2A8B, 5};
    Stroke currentVertex{0xFF8E2A8B, 3};
    Stroke vertex{0xFF17456B};
    Stroke normal{0xFF1B7FA8, 1, 0x33333333};
    Stroke box{0xFF7A5200, 1, 0x03FF03FF};
    Stroke settable{0xFF202020, 3};
    Stroke preview{0xFFB8004E, 1, 0x3FFF3FFF};
    Stroke axes[3] = {
        {0xFFB03A00, 1, 0x27FF27FF}, {0xFF00704F, 1, 0x27FF27FF}, {0xFF1F4FBF, 1, 0x27FF27FF}};
    Stroke grid{0xFFE2E5E8};
    std::uint32_t gridText = 0xFF6A727B;
    std::uint32_t faceNumber = 0xFF7A3C00;
    std::uint32_t vertexNumber = 0xFF303840;
    std::uint32_t listText = 0xFF000000; ///< of name lists
    std::uint32_t listCurrent = 0xFFC80000;
    std::uint32_t listPicked = 0xFFC3DCF1;    ///< behind a picked name
    std::uint32_t listPickedBar = 0xFF2F6FA7; ///< in front of it

    double pixel = 1; ///< device pixels to one of the desktop's
    double normalLength = 20;
    int squareRadius = 2; ///< of vertexes
    double diamondRadius = 7;
    double crossRadius = 6;
    double gridStep = 50;
    double axisLength = 60;
    double tripodLength = 20;
    double shortAxis = 8; ///< one that looks shorter points at the viewer
    int textGap = 4;
    Font numberFont{11};
    Font faceFont{11, 700};
    Font settableFont{13, 700};
    Font gridFont{12};
    Font axisFont{13, 700};
    double pickRadius = 6; ///< how near a point or an edge must be to be meant
    double tremble = 2;    ///< what a hand moves the mouse in a click

    Look() = default;
    /// As large to the eye on a desktop of so many device pixels to one of its own.
    explicit Look(double pixelScale, bool dark = false);

  private:
    void turnDark();
};

/// The present look; each picture is drawn with that of the window's desktop.
inline Look look;

/// Makes it the look of the platform's desktop as that is now.
void updateLook();

} // namespace polyfab
