// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/backgrounds.h"
#include "display/texture_slots.h"
#include "mesh/screen_positions.h"
#include "tests/display/pane_fixture.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace polyfab::test {
namespace {

/// A square that faces the left pane and shows a noise of 64 x 32 texels.
class Textures : public PaneTest {
  protected:
    static constexpr int width = 64, height = 32;

    Textures() : PaneTest({401, 200}) {
        displayOptions.renderLeft = true;
        displayOptions.renderedEdges = displayOptions.current = false;
        displayOptions.lightFromRight = displayOptions.lightFromAbove = 0; // texels as they are
        addPoints({{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}});
        for (int k = 0; k < 4; ++k) OB->addTexCoord(0, 0);
        FaceCorner corners[4];
        for (int k = 0; k < 4; ++k) {
            corners[k] = {OB->points + k, nullptr, OB->texcoords + k, 2, 0};
        }
        OB->addFaceByCorners(corners, 4);
        fitView(*OB);
        panView({0.25, 0.125, 0}); // no side runs through the middles of pixels
        transformPoints(*OB);
        std::mt19937 random(5);
        image->width = width;
        image->height = height;
        for (int i = 0; i < width * height; ++i) {
            image->pixels.push_back(0xFF000000U | std::uint32_t(random()));
        }
    }
    ~Textures() override { resetTextureSlots(); }

    /// The picture with so many texels to a pixel.
    const Bitmap& draw(double texels) {
        for (int k = 0; k < 4; ++k) {
            const Point& p = OB->points[k];
            OB->texcoords[k].u = (p.sx + 0.3) * texels / width;
            OB->texcoords[k].v = 1 - (p.sy + 0.3) * texels / height;
        }
        setTextureSlot(0, {"noise", image});
        return redraw();
    }
    std::uint32_t texel(int x, int y) const {
        return image->pixels[std::size_t(y % height * width + x % width)];
    }
    /// Calls look(x, y, pixel) for each pixel of the square.
    template <typename Look>
    static void forEach(const Bitmap& picture, Look look) {
        const Point &low = OB->points[0], &high = OB->points[2];
        for (int y = int(std::ceil(high.sy)); y <= low.sy; ++y) {
            for (int x = int(std::ceil(low.sx)); x <= high.sx; ++x) {
                look(x, y, picture.pixels[std::size_t(y * picture.width + x)]);
            }
        }
    }

    std::shared_ptr<Image> image = std::make_shared<Image>();
};

TEST_F(Textures, OfOneTexelToAPixelEachPixelHasItsOwn) {
    int seen = 0;
    forEach(draw(1), [&](int x, int y, std::uint32_t pixel) {
        ASSERT_EQ(pixel, texel(x, y)) << x << ' ' << y;
        ++seen;
    });
    EXPECT_GT(seen, 10'000);
    displayOptions.renderTextures = false;
    forEach(redraw(), [&](int, int, std::uint32_t pixel) { ASSERT_EQ(pixel, 0xFF808080); });
}

TEST_F(Textures, SmallerThanItsPictureAFaceShowsMeansOfSquares) {
    forEach(draw(4), [&](int x, int y, std::uint32_t pixel) {
        for (const int shift : {16, 8, 0}) {
            double sum = 0;
            for (int i = 0; i < 16; ++i) {
                sum += texel(4 * x + i % 4, 4 * y + i / 4) >> shift & 255;
            }
            ASSERT_NEAR(pixel >> shift & 255, sum / 16, 1.01) << x << ' ' << y;
        }
    });
}

TEST_F(Textures, LargerThanItsPictureAFaceShowsTexelsOrMixesThem) {
    image->pixels.assign(image->pixels.size(), 0xFF000000);
    for (std::size_t i = 0; i < image->pixels.size(); i += 2) image->pixels[i] = ~0U;
    const auto greys = [&] {
        std::set<std::uint32_t> found;
        forEach(draw(0.125), [&](int, int, std::uint32_t pixel) { found.insert(pixel & 255); });
        return found;
    };
    EXPECT_EQ(greys(), (std::set<std::uint32_t>{0, 255}));
    displayOptions.mixTexels = true; // in steps of 32, from 0.3 / 8 of a texel on
    EXPECT_EQ(greys().size(), 16);
}

TEST_F(Textures, WhatIsSeeThroughShowsWhatIsBehind) {
    OB->addPoint(-1, -1, -1, false);
    OB->addPoint(1, -1, -1, false);
    OB->addPoint(0, 1, -1, false);
    Point* const triangle[] = {OB->points + 4, OB->points + 5, OB->points + 6};
    OB->addFaceByPoints(triangle, 3, false);
    for (std::uint32_t& pixel : image->pixels) {
        pixel = (pixel & 0xFFFFFF) | (pixel % 3 == 0 ? 127U << 24 : 128U << 24);
    }
    int plain = 0, background = 0;
    forEach(draw(1), [&](int x, int y, std::uint32_t pixel) {
        const std::uint32_t own = texel(x, y) | 0xFF000000;
        if (texel(x, y) >> 24 >= 128) {
            ASSERT_EQ(pixel, own) << x << ' ' << y;
        } else {
            ++(pixel == 0xFF808080 ? plain : background);
        }
    });
    EXPECT_NEAR(plain, background, 0.1 * plain); // the triangle is half of the square
}

TEST_F(Textures, WhatIsBehindAPaneMovesAndGrowsWithTheViewAndDoesNotTurn) {
    emptyMesh();
    displayOptions.renderLeft = false;
    const Panes panes = panesOf(client);
    image->width = panes.leftWidth;
    image->height = panes.height;
    image->pixels.resize(std::size_t(image->width * image->height));
    for (std::uint32_t i = 0; i < image->pixels.size(); ++i) image->pixels[i] = 0xFF000000 | i;
    setBackground(true, *image);
    const auto own = [&](int x, int y) { return image->pixels[std::size_t(y * image->width + x)]; };
    const auto at = [&](int x, int y) {
        return redraw().pixels[std::size_t(y * client.width + x)];
    };
    for (const int x : {0, 77, 199}) EXPECT_EQ(at(x, 199 - x), own(x, 199 - x));
    panView({7, -3, 0});
    EXPECT_EQ(at(50, 60), own(43, 63));
    EXPECT_EQ(at(6, 60), look.background);
    polyfab::turnView(1, 0.5, true);
    EXPECT_EQ(at(50, 60), own(43, 63));
    zoomView(2, {50.5, 60.5, 0});
    EXPECT_EQ(at(52, 62), own(44, 64));
    EXPECT_EQ(at(51, 61), own(44, 64));
    EXPECT_EQ(at(53, 63), own(45, 65));
    refitBackgrounds();
    EXPECT_EQ(at(50, 60), own(50, 60));
    setBackground(true, {16384, 1, std::vector<std::uint32_t>(16384, 0xFF123456)});
    const Bitmap thin = redraw();
    EXPECT_EQ(std::ranges::count(thin.pixels, 0xFF123456), panes.leftWidth);
    setBackground(true, *image);
    displayOptions.backgrounds = false;
    EXPECT_EQ(at(53, 63), look.background);
    resetBackgrounds();
}

} // namespace
} // namespace polyfab::test
