// SPDX-License-Identifier: GPL-3.0-or-later
// The numbered colours of DXF files.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace polyfab {

/// The colour of this number as 0xRRGGBB; of a number beyond 1 to 255 white, which is number 7.
///
/// 1 to 9 are named ones, 250 to 255 are greys. Between, the tens go round the circle of hues in
/// steps of 15 degrees; the ones are five brightnesses, each pure and half way to its grey.
[[nodiscard]] inline std::uint32_t dxfColor(int number) {
    constexpr std::uint32_t named[] = {0xFFFFFF, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                       0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
    constexpr std::uint32_t greys[] = {0x333333, 0x5B5B5B, 0x848484, 0xADADAD, 0xD6D6D6, 0xFFFFFF};
    constexpr double brightnesses[] = {255, 165, 127, 76, 38};
    if (number < 0 || number > 255) return named[7];
    if (number < 10) return named[number];
    if (number >= 250) return greys[number - 250];
    const int step = (number - 10) / 10;
    const double hue = step * 0.25; // of the six sides of the circle
    const double brightness = brightnesses[number % 10 / 2];
    std::uint32_t color = 0;
    for (const double middle : {0.0, 2.0, 4.0}) {
        const double away = std::min(std::abs(hue - middle), 6 - std::abs(hue - middle));
        const double pure = std::clamp(2 - away, 0.0, 1.0);
        const double share = number % 2 == 0 ? pure : (pure + 1) / 2;
        color = color << 8 | static_cast<std::uint32_t>(brightness * share);
    }
    return color;
}

} // namespace polyfab
