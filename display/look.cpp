// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/look.h"

#include <algorithm>
#include <cmath>

namespace polyfab {
namespace {

/// Each of the lower 16 bits twice: dashes and gaps of double length.
std::uint32_t twiceAsLong(std::uint32_t pattern) {
    std::uint32_t longer = 0;
    for (unsigned i = 0; i < 16; ++i) longer |= (pattern >> i & 1) * (3U << 2 * i);
    return longer;
}

} // namespace

Look::Look(double pixelScale, bool dark) : pixel(pixelScale) {
    if (dark) turnDark();
    const auto scaled = [this](int size) {
        return std::max(1, static_cast<int>(std::lround(size * pixel)));
    };
    for (Stroke* stroke : {&selected, &unselected, &unselectedGrey, &loose, &bad, &currentFace,
                           &currentEdge, &currentVertex, &vertex, &normal, &box, &settable, axes,
                           axes + 1, axes + 2, &grid, &preview}) {
        stroke->width = scaled(stroke->width);
        if (pixel >= 1.5) stroke->pattern = twiceAsLong(stroke->pattern);
    }
    for (double* size : {&normalLength, &diamondRadius, &crossRadius, &gridStep, &axisLength,
                         &tripodLength, &shortAxis, &pickRadius, &tremble}) {
        *size *= pixel;
    }
    for (int* size : {&squareRadius, &textGap, &numberFont.height, &faceFont.height,
                      &settableFont.height, &gridFont.height, &axisFont.height}) {
        *size = scaled(*size);
    }
}

/// The hues stay, so that a colour means the same on both backgrounds.
void Look::turnDark() {
    background = 0xFF1D2125;
    divider = 0xFF59636D;
    selected.color = 0xFF9CCBF2;
    unselected.color = 0xFF66707A;
    unselectedGrey.color = 0xFF7C8791;
    loose.color = 0xFF4FC79B;
    bad.color = 0xFFFF8A50;
    for (Stroke* const stroke : {&currentFace, &currentEdge, &currentVertex}) {
        stroke->color = 0xFFE58BE2;
    }
    vertex.color = 0xFF9CCBF2;
    normal.color = 0xFF5FB8DC;
    box.color = 0xFFD9A441;
    settable.color = 0xFFE8E8E8;
    preview.color = 0xFFFF6FA8;
    axes[0].color = 0xFFFF9966;
    axes[1].color = 0xFF55C9A0;
    axes[2].color = 0xFF8FB0FF;
    grid.color = 0xFF2E343A;
    gridText = 0xFF97A1AB;
    faceNumber = 0xFFE8B27A;
    vertexNumber = 0xFFD2DAE2;
    listText = 0xFFE8E8E8;
    listCurrent = 0xFFFF7A6B;
    listPicked = 0xFF2B4A66;
    listPickedBar = 0xFF6FB1E8;
}

void updateLook() { look = Look(platform().pixelScale(), platform().darkTheme()); }

} // namespace polyfab
