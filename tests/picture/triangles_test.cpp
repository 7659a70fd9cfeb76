// SPDX-License-Identifier: GPL-3.0-or-later
#include "picture/triangles.h"
#include "picture/workers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace polyfab::test {
namespace {

constexpr int width = 150, height = 100;

/// Triangles on points of their own places; each is a face.
struct Scene {
    std::vector<ScreenCorner> places;
    std::vector<RasterTriangle> triangles;

    void add(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        RasterTriangle added{{a, b, c}, 0, 0};
        added.face = triangles.size() & 0x7FFFFFFF;
        triangles.push_back(added);
    }
    void draw(DepthTiles& tiles, std::span<const RasterTriangle> drawn) const {
        std::vector<RasterPoint> points;
        for (const ScreenCorner& p : places) points.push_back(rasterPoint(p.x, p.y, p.depth));
        tiles.draw(width, height, {points, drawn, [this](auto i) { return places[i]; }});
    }
    /// Per pixel the face that is seen, or -1.
    std::vector<int> facesSeen(std::span<const RasterTriangle> drawn) const {
        static DepthTiles tiles;
        draw(tiles, drawn);
        std::vector<int> faces;
        for (int i = 0; i < width * height; ++i) {
            const std::uint32_t code = tiles.seen(i % width, i / width);
            faces.push_back(code == Seen::nothing ? -1 : int(drawn[Seen::triangle(code)].face));
        }
        return faces;
    }
};

std::mt19937 random(7);

double between(double low, double high) {
    return std::uniform_real_distribution(low, high)(random);
}

/// A net of triangles whose points are shaken; `step` pixels from one to the next.
Scene shakenNet(double left, double top, double step, int side) {
    Scene net;
    for (int i = 0; i <= side; ++i) {
        for (int k = 0; k <= side; ++k) {
            const double shake = 0.09 * step; // no triangle turns over
            // Some on whole pixels, so that sides run through pixel middles.
            ScreenCorner p{left + k * step + between(-shake, shake),
                           top + i * step + between(-shake, shake), between(0, 9)};
            if (step > 8 && (i + k) % 3 == 0) p = {std::round(p.x), std::round(p.y), p.depth};
            net.places.push_back(p);
        }
    }
    for (int i = 0; i < side; ++i) {
        for (int k = 0; k < side; ++k) {
            const auto a = static_cast<std::uint32_t>(i * (side + 1) + k), b = a + 1,
                       c = a + static_cast<std::uint32_t>(side) + 1, d = c + 1;
            random() % 2 != 0 ? (net.add(a, b, d), net.add(a, d, c))
                              : (net.add(b, c, a), net.add(d, c, b));
        }
    }
    return net;
}

TEST(Triangles, EachPixelOfASurfaceBelongsToExactlyOneOfTheTrianglesThatShareEdges) {
    struct Net {
        double left, top, step;
        int side;
    };
    setWorkers(1);
    // Finer than pixels, as large as a few, larger than tiles, and beyond what is clipped.
    for (const Net& net : {Net{20, 10, 0.7, 60}, Net{10, 10, 9, 11}, Net{-300, -200, 90, 8},
                           Net{-70000, -60000, 45000, 3}, Net{-3e7, -2e7, 2.1e7, 3}}) {
        const Scene scene = shakenNet(net.left, net.top, net.step, net.side);
        std::vector<int> covers(width * height, 0);
        for (const RasterTriangle& triangle : scene.triangles) {
            const std::vector<int> alone = scene.facesSeen({&triangle, 1});
            for (std::size_t i = 0; i < alone.size(); ++i) covers[i] += alone[i] >= 0 ? 1 : 0;
        }
        const double right = net.left + (net.side - 0.5) * net.step,
                     bottom = net.top + (net.side - 0.5) * net.step;
        int inside = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const int count = covers[std::size_t(y * width + x)];
                ASSERT_LE(count, 1) << x << ' ' << y << ", step " << net.step;
                if (x < net.left + net.step / 2 || x > right || y < net.top + net.step / 2
                    || y > bottom) {
                    continue;
                }
                ASSERT_EQ(count, 1) << x << ' ' << y << ", step " << net.step;
                ++inside;
            }
        }
        EXPECT_GT(inside, 1500);
    }
    setWorkers(0);
}

/// The rule, looked at for each pixel and triangle: in 256ths of a pixel, whole numbers.
std::vector<int> plainly(const Scene& scene) {
    std::vector<int> faces(width * height, -1);
    std::vector<float> depths(width * height, std::numeric_limits<float>::infinity());
    for (const RasterTriangle& triangle : scene.triangles) {
        ScreenCorner exact[3];
        std::array<RasterPoint, 3> p{};
        for (std::size_t k = 0; k < 3; ++k) {
            const ScreenCorner& c = scene.places[triangle.corner[k]];
            p[k] = rasterPoint(c.x, c.y, c.depth);
            exact[k] = {p[k].x / 256.0, p[k].y / 256.0, p[k].z / 256.0};
        }
        const auto turn = [](const RasterPoint& a, const RasterPoint& b, int x, int y) {
            return std::int64_t{b.x - a.x} * (y - a.y) - std::int64_t{b.y - a.y} * (x - a.x);
        };
        const std::int64_t area = turn(p[0], p[1], p[2].x, p[2].y);
        if (area == 0) continue;
        if (area < 0) std::swap(p[1], p[2]);
        const Slope depth(exact[0].depth, exact[1].depth, exact[2].depth);
        for (int i = 0; i < width * height; ++i) {
            const int x = i % width, y = i / width;
            bool inside = true;
            for (std::size_t k = 0; k < 3; ++k) {
                const RasterPoint &a = p[k], &b = p[(k + 1) % 3];
                const bool topOrLeft = b.y < a.y || (b.y == a.y && b.x > a.x);
                inside &= turn(a, b, 256 * x, 256 * y) >= (topOrLeft ? 0 : 1);
            }
            const auto near = static_cast<float>(depth.at(TriangleFrame(exact).at(x, y)));
            const auto at = static_cast<std::size_t>(i);
            // Faces come in order: of those that are equally near the first stays.
            if (!inside || !(near < depths[at])) continue;
            depths[at] = near;
            faces[at] = int(triangle.face);
        }
    }
    return faces;
}

TEST(Triangles, SliversOfCornersInALineLieBetweenTheDepthsOfTheirCorners) {
    // Rounding to 256ths of a pixel gives them an area that they do not have.
    DepthTiles tiles;
    int covered = 0;
    for (int round = 0; round < 3000; ++round) {
        const double x = between(0, 40), y = between(0, 20);
        Scene scene{{{0, 0, 3}, {x, y, 5}, {2 * x, 2 * y, 7}}, {}};
        scene.add(0, 1, 2);
        scene.draw(tiles, scene.triangles);
        for (int i = 0; i < width * height; ++i) {
            if (tiles.seen(i % width, i / width) == Seen::nothing) continue;
            const float depth = tiles.depth(i % width, i / width);
            ASSERT_TRUE(depth >= 3 && depth <= 7) << depth;
            ++covered;
        }
    }
    EXPECT_GT(covered, 20); // of few the line runs through a pixel middle
}

TEST(Triangles, TheNearestIsSeenOfEqualsTheLowerFaceWhateverTheOrderAndTheThreads) {
    for (int round = 0; round < 12; ++round) {
        Scene scene;
        for (int i = 0; i < 60; ++i) {
            const double size = i % 3 == 0 ? 400 : i % 3 == 1 ? 30 : 4;
            const double x = between(-20, width), y = between(-20, height);
            const double z = i % 5 == 0 ? 0 : between(-50, 50); // some in one plane
            for (int k = 0; k < 3; ++k) {
                const double tilt = i % 5 == 0 ? 0 : between(-5, 5);
                scene.places.push_back(
                    {x + between(-size, size), y + between(-size, size), z + tilt});
            }
            const auto first = static_cast<std::uint32_t>(3 * i);
            scene.add(first, first + 1, first + 2);
            if (i % 4 == 0) scene.add(first, first + 1, first + 2);
        }
        scene.places[5].x = NAN;
        Scene finite = scene;
        std::erase_if(finite.triangles, [](const RasterTriangle& t) { return t.corner[2] == 5; });
        const std::vector<int> expected = plainly(finite);
        for (const int threads : {1, 2, 3, 8}) {
            setWorkers(threads);
            EXPECT_EQ(scene.facesSeen(scene.triangles), expected) << threads;
            std::shuffle(scene.triangles.begin(), scene.triangles.end(), random);
        }
        setWorkers(0);
    }
}

} // namespace
} // namespace polyfab::test
