// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/raster.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
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
/// line there, and do its dashes leave it out?
void drawPlainly(Sheet& sheet, std::int64_t x0, std::int64_t y0, std::int64_t x1, std::int64_t y1,
                 const Stroke& stroke = {ink}) {
    const std::int64_t dx = x1 - x0;
    const std::int64_t dy = y1 - y0;
    const bool flat = std::abs(dx) >= std::abs(dy);
    const Wide n = flat ? std::abs(dx) : std::abs(dy);
    const Wide m = flat ? std::abs(dy) : std::abs(dx);
    for (std::int64_t place = 0; place < (flat ? sheet.width : sheet.height); ++place) {
        const std::int64_t i =
            flat ? (dx < 0 ? x0 - place : place - x0) : (dy < 0 ? y0 - place : place - y0);
        if (i < 0 || i > n) continue;
        if (i > 0 && (stroke.pattern >> place % 32 & 1) == 0) continue;
        const auto moves = n == 0 ? 0 : static_cast<std::int64_t>((2 * i * m + n) / (2 * n));
        for (int k = 0; k < stroke.width; ++k) {
            const int beside = k - stroke.width / 2;
            const std::int64_t x = flat ? place : x0 + (dx < 0 ? -moves : moves) + beside;
            const std::int64_t y = flat ? y0 + (dy < 0 ? -moves : moves) + beside : place;
            if (x >= 0 && x < sheet.width && y >= 0 && y < sheet.height) {
                sheet.at(x, y) = stroke.color;
            }
        }
    }
}

using Segment = std::array<int, 4>;

void expectAsPlain(const Segment& segment, const Stroke& stroke, int width, int height) {
    const auto [x0, y0, x1, y1] = segment;
    Sheet plain(width, height), clipped(width, height), real(width, height);
    drawPlainly(plain, x0, y0, x1, y1, stroke);
    drawClipped(clipped.canvas(), x0, y0, x1, y1, stroke);
    drawLine(real.canvas(), x0, y0, x1, y1, stroke);
    ASSERT_EQ(clipped.pixels, plain.pixels);
    ASSERT_EQ(real.pixels, plain.pixels);
    const auto on = [&](int x, int y) { return x >= 0 && x < width && y >= 0 && y < height; };
    if (!on(x0, y0) || !on(x1, y1) || stroke.width > 1) return;
    Sheet inside(width, height);
    const auto draw = stroke.pattern == Stroke::solid ? drawInside<false> : drawInside<true>;
    draw(inside.canvas(), x0, y0, x1, y1, stroke);
    ASSERT_EQ(inside.pixels, plain.pixels);
}

TEST(Raster, RandomLinesAreThePlainLineLessWhatIsOffTheCanvas) {
    std::mt19937 random(11);
    const auto upTo = [&random](int reach) {
        return std::uniform_int_distribution<int>(-reach, reach)(random);
    };
    // From lines within the canvas to lines that only graze it from very far.
    constexpr Stroke strokes[] = {{ink},    {ink, 1, 0x0F0F0F0F}, {ink, 1, 0x83A1F0C3}, {ink, 2},
                                  {ink, 5}, {ink, 3, 0x07070707}};
    constexpr int reaches[] = {2, 20, 45, 200, 30000, 10000000, 1000000000, lineReach};
    for (int round = 0; round < 40000; ++round) {
        Segment segment;
        const int usual = reaches[random() % 8];
        for (int& value : segment) value = upTo(random() % 4 == 0 ? reaches[random() % 8] : usual);
        // Half of them through a point of the canvas: the far end mirrored in the near one.
        for (const std::size_t end : {2U, 3U}) {
            if (round % 2 == 0) segment[end] = upTo(40) - segment[end - 2] / 2;
        }
        // Some along the axes and the diagonals.
        if (round % 8 == 1) segment[1] = segment[3] = upTo(20);
        if (round % 8 == 3) segment[0] = segment[2] = upTo(20);
        if (round % 8 == 5) segment = {-usual, -usual, usual, usual};
        SCOPED_TRACE(testing::PrintToString(segment));
        ASSERT_NO_FATAL_FAILURE(
            expectAsPlain(segment, strokes[random() % 6], 1 + round % 41, 1 + round % 37));
    }
}

TEST(Raster, EndsBeyondWholeNumbersCrossTheCanvasAndThoseThatAreNoPlaceDrawNothing) {
    for (const double far : {3e9, 1e12, 1e18, 1e300}) {
        Sheet sheet(21, 21), expected(21, 21);
        // Of slanted lines from so far away rounding leaves the pixels open.
        drawLine(sheet.canvas(), -far, 10, far, 10, {ink});
        drawLine(sheet.canvas(), 10, far, 10, 10, {ink});
        drawPlainly(expected, -1, 10, 21, 10);
        drawPlainly(expected, 10, 21, 10, 10);
        for (const double odd : {double(INFINITY), std::nan(""), 1.7e308}) {
            drawLine(sheet.canvas(), odd, 1, 6, 6, {ink});
            drawLine(sheet.canvas(), 1, 1, 6, -odd, {ink});
        }
        EXPECT_EQ(sheet.pixels, expected.pixels) << far;
    }
}

} // namespace
} // namespace polyfab::test
