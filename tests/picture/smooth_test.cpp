// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/smooth.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace polyfab::test {
namespace {

constexpr int side = 40;
using Sheet = std::vector<std::uint32_t>;

/// White on black, so that a pixel's blue is how much of it is covered.
template <typename Draw>
Sheet drawn(Draw draw) {
    Sheet sheet(side * side, 0xFF000000);
    draw(Canvas{sheet.data(), side, side, side});
    return sheet;
}

int cover(const Sheet& sheet, int x, int y) {
    return static_cast<int>(sheet[static_cast<std::size_t>(y * side + x)] & 255);
}

TEST(Smooth, EachColumnOfALineIsCoveredByItsWidthAroundItWhicheverWayItRuns) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> place(-10, side + 10.0);
    for (int i = 0; i < 2000; ++i) {
        const Place a{place(random), place(random)}, b{place(random), place(random)};
        const Stroke stroke{0xFFFFFFFF, 1 + i % 4};
        const Sheet sheet = drawn([&](const Canvas& c) { drawSmoothLine(c, a, b, stroke); });
        EXPECT_EQ(sheet, drawn([&](const Canvas& c) { drawSmoothLine(c, b, a, stroke); }));
        if (std::abs(a.x - b.x) < std::abs(a.y - b.y)) continue; // the same across
        for (int x = 0; x < side; ++x) {
            if (x < std::min(a.x, b.x) || x > std::max(a.x, b.x)) continue;
            const double middle = a.y + (b.y - a.y) * ((x - a.x) / (b.x - a.x));
            if (middle < 5 || middle > side - 6) continue;
            double sum = 0, moment = 0;
            for (int y = 0; y < side; ++y) {
                sum += cover(sheet, x, y);
                moment += cover(sheet, x, y) * y;
            }
            EXPECT_NEAR(sum / 255, stroke.width, 0.02);
            EXPECT_NEAR(moment / sum, middle, 0.03);
        }
    }
}

TEST(Smooth, LinesAlongThePixelsAreCrispAndATintKeepsToTheMiddlesInThePolygon) {
    const Sheet sheet = drawn([](const Canvas& canvas) {
        drawSmoothLine(canvas, {3, 5.3}, {9, 5.3}, {0xFFFFFFFF});
        drawSmoothLine(canvas, {0, NAN}, {9, 9}, {0xFFFFFFFF});
        constexpr std::array<Place, 3> corners{{{20, 20}, {30, 20}, {20, 30}}};
        tintPolygon(canvas, corners, 0xFFFFFFFF, 128);
    });
    int covered = 0;
    for (int i = 0; i < side * side; ++i) covered += cover(sheet, i % side, i / side) > 0;
    EXPECT_EQ(covered, 7 + 55);
    EXPECT_EQ(cover(sheet, 3, 5), 255);
    EXPECT_EQ(cover(sheet, 21, 21), 127);
}

} // namespace
} // namespace polyfab::test
