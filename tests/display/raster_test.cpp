// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/raster.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace polyfab::test {
namespace {

constexpr std::uint32_t ink = 0xFF102030;
constexpr std::uint32_t paper = 0xFFFFFFFF;

/// Holds the products of any two lengths.
__extension__ typedef __int128 Wide;

/// A canvas in the middle of a larger picture, so that a pixel beside it is seen.
struct Sheet {
    static constexpr int border = 3;
    int width, height, stride;
    std::vector<std::uint32_t> pixels;

    Sheet(int w, int h)
        : width(w), height(h), stride(w + 2 * border),
          pixels(static_cast<std::size_t>(stride * (h + 2 * border)), paper) {}
    Canvas canvas() { return {pixels.data() + border * stride + border, width, height, stride}; }
    std::uint32_t& at(std::int64_t x, std::int64_t y) {
        return pixels[static_cast<std::size_t>((y + border) * stride + x + border)];
    }
};

/// The rule of the header, stated pixel by pixel: at each column or row of the canvas, where is the
/// line there?
void drawPlainly(Sheet& sheet, std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1) {
    const std::int64_t dx = x1 - x0;
    const std::int64_t dy = y1 - y0;
    const bool flat = std::abs(dx) >= std::abs(dy);
    const Wide n = flat ? std::abs(dx) : std::abs(dy);
    const Wide m = flat ? std::abs(dy) : std::abs(dx);
    for (std::int64_t place = 0; place < (flat ? sheet.width : sheet.height); ++place) {
        const std::int64_t i =
            flat ? (dx < 0 ? x0 - place : place - x0) : (dy < 0 ? y0 - place : place - y0);
        if (i < 0 || i > n) continue;
        const auto moves = n == 0 ? 0 : static_cast<std::int64_t>((2 * i * m + n) / (2 * n));
        const std::int64_t x = flat ? place : x0 + (dx < 0 ? -moves : moves);
        const std::int64_t y = flat ? y0 + (dy < 0 ? -moves : moves) : place;
        if (x >= 0 && x < sheet.width && y >= 0 && y < sheet.height) sheet.at(x, y) = ink;
    }
}

using Segment = std::array<int, 4>;

std::string name(const Segment& s, const Sheet& sheet) {
    std::string text = std::to_string(sheet.width) + "x" + std::to_string(sheet.height) + ":";
    for (const int value : s) text += " " + std::to_string(value);
    return text;
}

void expectAsPlain(const Segment& s, int width, int height) {
    const auto [x0, y0, x1, y1] = s;
    Sheet plain(width, height);
    drawPlainly(plain, x0, y0, x1, y1);
    Sheet whole(width, height);
    drawClipped(whole.canvas(), x0, y0, x1, y1, ink);
    ASSERT_EQ(whole.pixels, plain.pixels) << name(s, whole);
    Sheet real(width, height);
    drawLine(real.canvas(), x0, y0, x1, y1, ink);
    ASSERT_EQ(real.pixels, plain.pixels) << name(s, real);
    const auto on = [&](int x, int y) { return x >= 0 && x < width && y >= 0 && y < height; };
    if (!on(x0, y0) || !on(x1, y1)) return;
    Sheet inside(width, height);
    drawInside(inside.canvas(), x0, y0, x1, y1, ink);
    ASSERT_EQ(inside.pixels, plain.pixels) << name(s, inside);
}

TEST(Raster, RandomLinesAreThePlainLineLessWhatIsOffTheCanvas) {
    std::mt19937 random(11);
    // From lines within the canvas to lines that only graze it from very far.
    const int reaches[] = {2, 20, 45, 200, 30000, 10000000, 1000000000, lineReach};
    for (int round = 0; round < 40000; ++round) {
        const int width = 1 + static_cast<int>(random() % 40);
        const int height = 1 + static_cast<int>(random() % 40);
        Segment segment;
        const int usual = reaches[random() % 8];
        for (int& value : segment) {
            const int reach = random() % 4 == 0 ? reaches[random() % 8] : usual;
            value = std::uniform_int_distribution<int>(-reach, reach)(random);
        }
        // Half of them through a point of the canvas: the far end mirrored in the near one.
        if (round % 2 == 0) {
            segment[2] = static_cast<int>(random() % 40) - segment[0] / 2;
            segment[3] = static_cast<int>(random() % 40) - segment[1] / 2;
        }
        ASSERT_NO_FATAL_FAILURE(expectAsPlain(segment, width, height));
    }
}

TEST(Raster, LinesAlongTheAxesAndTheCorners) {
    constexpr int far = lineReach;
    const Segment cases[] = {
        {0, 0, 0, 0},       {9, 4, 9, 4},      {10, 4, 10, 4},         {-1, 0, -1, 0},
        {-far, 2, far, 2},  {far, 2, -far, 2}, {3, -far, 3, far},      {3, far, 3, -far},
        {-far, -1, far, 0}, {-far, 5, far, 4}, {-far, -far, far, far}, {far, -far, -far, far},
        {-5, -1, 15, -1},   {-5, 5, 15, 5},    {-1, -5, -1, 15},       {10, -5, 10, 15},
        {-1, 0, 0, -1},     {10, 3, 8, 5},     {0, 0, 9, 4},           {9, 4, 0, 0},
    };
    for (const Segment& segment : cases) ASSERT_NO_FATAL_FAILURE(expectAsPlain(segment, 10, 5));
}

TEST(Raster, EndsBeyondWholeNumbersStillCrossTheCanvas) {
    for (const double far : {3e9, 1e12, 1e18, 1e300}) {
        // Through the canvas's middle row, column and diagonal, both ways round.
        Sheet row(21, 21), column(21, 21), diagonal(21, 21), one(21, 21);
        drawLine(row.canvas(), -far, 10, far, 10, ink);
        drawLine(column.canvas(), 10, far, 10, -far, ink);
        drawLine(diagonal.canvas(), far, far, -far, -far, ink);
        drawLine(one.canvas(), 10, 10, far, 10, ink);
        for (int i = 0; i < 21; ++i) {
            EXPECT_EQ(row.at(i, 10), ink) << far;
            EXPECT_EQ(column.at(10, i), ink) << far;
            // Farther away a position is no longer known to the pixel.
            if (far < 1e15) {
                EXPECT_EQ(diagonal.at(i, i), ink) << far;
            }
            EXPECT_EQ(one.at(i, 10), i >= 10 ? ink : paper) << far;
        }
    }
}

TEST(Raster, EndsThatAreNoPlaceDrawNothing) {
    const double infinity = std::numeric_limits<double>::infinity();
    const Sheet blank(8, 8);
    for (const double odd : {infinity, -infinity, std::nan(""), 1.7e308}) {
        for (int place = 0; place < 4; ++place) {
            double ends[4] = {1, 1, 6, 6};
            ends[place] = odd;
            Sheet sheet(8, 8);
            drawLine(sheet.canvas(), ends[0], ends[1], ends[2], ends[3], ink);
            EXPECT_EQ(sheet.pixels, blank.pixels);
        }
    }
    Sheet empty(0, 4);
    drawClipped(empty.canvas(), -5, -5, 5, 5, ink);
    EXPECT_EQ(empty.pixels, Sheet(0, 4).pixels);
}

} // namespace
} // namespace polyfab::test
