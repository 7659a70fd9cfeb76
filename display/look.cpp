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

Look::Look(double pixelScale) : pixel(pixelScale) {
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

} // namespace polyfab
