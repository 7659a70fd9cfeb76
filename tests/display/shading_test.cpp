// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/cut_face.h"
#include "display/look.h"
#include "display/shade_normals.h"
#include "display/shading.h"
#include "mesh/face_area.h"
#include "picture/workers.h"
#include "tests/display/pane_fixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <set>

namespace polyfab::test {
namespace {

class Shading : public PaneTest {
  protected:
    Shading() : PaneTest({401, 200}) {
        displayOptions.renderLeft = displayOptions.renderRight = true;
        displayOptions.renderedEdges = displayOptions.current = false;
    }
    ~Shading() override { setWorkers(0); }

    /// A ball of radius 1 around the origin, of 20 * side * side triangles: those of an icosahedron
    /// cut up.
    static void addBall(int side, bool withNormals) {
        const double golden = (1 + std::sqrt(5)) / 2;
        std::vector<Vec3> tips;
        for (const double a : {-1.0, 1.0}) {
            for (const double b : {-golden, golden}) {
                tips.insert(tips.end(), {{0, a, b}, {a, b, 0}, {b, 0, a}});
            }
        }
        for (std::size_t i = 0; i < 12; ++i) {
            for (std::size_t j = 0; j < 12; ++j) {
                for (std::size_t k = 0; k < 12; ++k) {
                    const Vec3 &a = tips[i], &b = tips[j], &c = tips[k];
                    const bool isSide = std::abs(squaredDistance(a, b) - 4) < 1e-9
                                        && std::abs(squaredDistance(b, c) - 4) < 1e-9
                                        && std::abs(squaredDistance(a, c) - 4) < 1e-9;
                    if (isSide && i < j && i < k && dot(a, cross(b, c)) > 0) {
                        addPatch(a, b, c, side, withNormals);
                    }
                }
            }
        }
    }
    static void addPatch(const Vec3& a, const Vec3& b, const Vec3& c, int side, bool withNormals) {
        int above = 0; // first point of the row above
        for (int row = 0; row <= side; ++row) {
            const int first = OB->np;
            for (int i = 0; i <= row; ++i) {
                const Vec3 p = unit(a * (side - row) + b * (row - i) + c * i);
                OB->addPoint(p.x, p.y, p.z, false);
                OB->addNormal(p.x, p.y, p.z);
            }
            for (int i = 0; i < row; ++i) {
                addTriangle({above + i, first + i, first + i + 1}, withNormals);
                if (i > 0) addTriangle({above + i - 1, first + i, above + i}, withNormals);
            }
            above = first;
        }
    }
    static void addTriangle(const std::array<int, 3>& points, bool withNormals) {
        FaceCorner corners[3];
        for (std::size_t k = 0; k < 3; ++k) {
            Normal* const normal = withNormals ? OB->normals + points[k] : nullptr;
            corners[k] = {OB->points + points[k], normal, nullptr, 2, 0};
        }
        OB->addFaceByCorners(corners, 3);
    }
    static std::uint32_t at(const Bitmap& picture, int x, int y) {
        return picture.pixels[std::size_t(y * picture.width + x)];
    }
};

TEST_F(Shading, ABallHasTheBrightnessThatItsNormalsGiveIt) {
    client = {1815, 907};
    view.client = client;
    addBall(100, true);
    turnView(20, 30, 40);
    panView({0.3, 0.17, 0.44}); // else the outline runs through dozens of pixel middles
    const Bitmap& picture = redraw();
    const Vec3 middle = projection.toScreen({0, 0, 0});
    const Panes panes = panesOf(client);
    int differ[2] = {}, same = 0;
    for (const bool left : {true, false}) {
        for (int i = 0; i < panes.leftWidth * panes.height; ++i) {
            const int x = i % panes.leftWidth, y = i / panes.leftWidth;
            const double right = (x - (left ? middle.x : middle.z)) / view.scale,
                         up = (middle.y - y) / view.scale, square = 1 - right * right - up * up;
            const double near = std::sqrt(std::max(square, 0.0));
            const double light = right * std::sin(M_PI / 6) * std::cos(M_PI / 4.5)
                                 + up * std::sin(M_PI / 4.5)
                                 + near * std::cos(M_PI / 6) * std::cos(M_PI / 4.5);
            const int grey = int(std::floor(128 * (0.25 + 0.75 * std::max(light, 0.0)) + 0.5));
            const std::uint32_t pixel = at(picture, (left ? 0 : panes.rightStart) + x, y);
            if ((pixel != look.background) != (square >= 0)) {
                ++differ[left];
            } else if (square >= 0) {
                ASSERT_NEAR(int(pixel & 255), grey, 1) << x << ' ' << y;
                ++same;
            }
        }
    }
    for (const int cover : differ) EXPECT_LE(cover, 25);
    EXPECT_GT(same, 900'000);
}

TEST_F(Shading, NeitherThreadsNorTheOrderOfCornersNorDoubledFacesChangeAPixel) {
    addCube();
    addBall(6, false);
    addPoints({{-1.2, -1, .7}, {0, -1.4, .9}, {1.3, -.2, .8}, {.2, .1, 1.1}, {.4, 1.2, .6}});
    const int last = OB->np - 5;
    addFace({last, last + 1, last + 2, last + 3, last + 4});
    turnView(30, 20, 5);
    for (const bool smooth : {false, true}) {
        displayOptions.renderSmooth = smooth;
        const Bitmap picture = redraw();
        for (const int threads : {2, 3, 8, 1}) {
            setWorkers(threads);
            EXPECT_EQ(redraw().pixels, picture.pixels) << threads;
        }
        for (int i = 0; i < OB->nf; ++i) {
            const Face& face = OB->faces[i];
            std::rotate(face.q, face.q + 1 + i % (face.n - 1), face.q + face.n);
        }
        EXPECT_EQ(redraw().pixels, picture.pixels);
        if (smooth) break;
        // Doubles on points of their own, some of them turned over, lie behind what they double.
        const int faces = OB->nf;
        for (int i = 0; i < faces; ++i) {
            std::vector<int> points;
            for (int k = 0; k < OB->faces[i].n; ++k) {
                const Point p = *OB->faces[i].q[k].p;
                points.push_back(OB->addPoint(p.x, p.y, p.z, false));
            }
            if (i % 2 != 0) std::reverse(points.begin(), points.end());
            addFace(points)->selected = 0;
        }
        EXPECT_EQ(redraw().pixels, picture.pixels);
    }
}

TEST_F(Shading, APolygonWhoseCornerMovesIsCutAnew) {
    addPoints({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {.4, 1.6, 0}});
    addFace({0, 1, 2, 3});
    redraw();
    OB->points[2].x = .6; // over the diagonal by which it was cut
    OB->points[2].y = .3;
    const Bitmap moved = redraw();
    forgetShading();
    EXPECT_EQ(redraw().pixels, moved.pixels);
}

TEST_F(Shading, WhatIsRoundLooksRoundAndACubeStaysACube) {
    addCube();
    turnView(30, 20);
    const Bitmap smoothCube = redraw();
    displayOptions.renderSmooth = false;
    EXPECT_EQ(redraw().pixels, smoothCube.pixels);
    emptyMesh();
    addBall(12, false); // in twenty patches;
    turnView(30, 20);
    const auto steps = [&] { // from pixel to pixel down the middle
        const Bitmap& picture = redraw();
        int most = 0;
        for (int y = 50; y < 150; ++y) {
            most = std::max(
                most, std::abs(int(at(picture, 95, y) & 255) - int(at(picture, 95, y + 1) & 255)));
        }
        return most;
    };
    EXPECT_GT(steps(), 5);
    displayOptions.renderSmooth = true;
    EXPECT_LE(steps(), 3);
}

TEST_F(Shading, AroundAPointTheNormalsOfFacesWithin45DegreesAreBlendedHoweverManyThereAre) {
    for (const int n : {100, 1000, 5000}) {
        for (const bool pleated : {false, true}) { // a cone, or faces that go up and down
            emptyMesh();
            OB->addPoint(0, 0, 1, false);
            for (int i = 0; i < n; ++i) {
                const double angle = 2 * M_PI * i * i / n / n; // wide and narrow ones
                OB->addPoint(std::cos(angle), std::sin(angle), pleated ? i % 7 * .4 : 0, false);
            }
            for (int i = 0; i < n; ++i) addFace({0, 1 + i, 1 + (i + 1) % n});
            TriangleList list;
            ShadeNormals normals;
            listTriangles(*OB, list, false);
            findFlatNormals(*OB, list, normals);
            findSmoothNormals(*OB, list, normals);
            std::vector<Vec3> faces;
            std::vector<double> angles;
            for (int i = 0; i < n; ++i) {
                const auto way = [&](int k) {
                    const Point& p = *OB->faces[i].q[k].p;
                    return unit(Vec3{p.x, p.y, p.z - 1});
                };
                faces.push_back(unit(scaledArea(OB->faces[i])));
                angles.push_back(std::acos(std::clamp(dot(way(1), way(2)), -1.0, 1.0)));
            }
            for (std::size_t t = 0; t < list.triangles.size(); t += 7) {
                const Vec3& own = faces[list.triangles[t].face];
                Vec3 sum;
                for (std::size_t i = 0; i < faces.size(); ++i) {
                    if (dot(faces[i], own) >= std::sqrt(.5)) sum += faces[i] * angles[i];
                }
                const auto& corner = list.triangles[t].corner;
                const auto k = std::size_t(
                    std::find_if(corner, corner + 3, [&](auto c) { return list.pointOf[c] == 0; })
                    - corner);
                const PackedNormal& found = normals.smooth[list.normals[t].corner[k]];
                const Vec3 is{found.x / 32767., found.y / 32767., found.z / 32767.};
                EXPECT_GT(dot(is, unit(sum)), n > 1024 ? 0.999 : 0.9999) << n << ' ' << pleated;
            }
        }
    }
}

TEST_F(Shading, ColoursTellMaterialsSelectionAndSides) {
    addCube();
    fitView(*OB);
    displayOptions.renderSmooth = false;
    displayOptions.lightFromRight = displayOptions.lightFromAbove = 0;
    displayOptions.renderBackground = 0x102030;
    constexpr std::uint32_t opaque = 0xFF000000;
    OB->materials[0].color = 0x4080C0;
    EXPECT_EQ(at(redraw(), 100, 100), opaque | 0x4080C0);
    EXPECT_EQ(at(redraw(), 1, 1), opaque | 0x102030);
    for (Face& face : liveFaces(*OB)) face.selected = 0;
    EXPECT_EQ(at(redraw(), 100, 100), opaque | 0x6888A8); // floor(c + 0.5) of the average
    for (Face& face : liveFaces(*OB)) {
        face.selected = 1;
        std::reverse(face.q, face.q + face.n);
    }
    EXPECT_EQ(at(redraw(), 100, 100), opaque | 0x786D60);
    displayOptions.hideFacingAway = true; // the far side shows its front
    EXPECT_EQ(at(redraw(), 100, 100), opaque | 0x4080C0);
    displayOptions.lightFromRight = 180;
    displayOptions.hideFacingAway = false;
    EXPECT_EQ(at(redraw(), 100, 100), opaque | 0x1E1B18);
}

TEST_F(Shading, EdgesShowWhereAnotherFaceBeginsAndMarkedOnesOnlyWhereNothingHidesThem) {
    addCube();
    turnView(30, 20);
    const Bitmap plain = redraw();
    displayOptions.renderedEdges = true;
    const Bitmap withEdges = redraw();
    int changed = 0;
    for (std::size_t i = 0; i < plain.pixels.size(); ++i) {
        changed += plain.pixels[i] != withEdges.pixels[i] ? 1 : 0;
    }
    EXPECT_GT(changed, 1000); // nine edges of some 80 pixels in each pane
    EXPECT_LT(changed, 1700);
    displayOptions.current = true;
    const auto currentSides = [&] { // how many of the faces' sides are marked in the left pane
        int marked = 0;
        for (int i = 0; i < 24; ++i) {
            const Bitmap& picture = redraw({.edgeFace = i / 4, .edgeCorner = i % 4});
            int pixels = 0; // a few are at the ends of hidden ones, which reach the outline
            for (int k = 0; k < 200 * 200; ++k) {
                pixels += at(picture, k % 200, k / 200) == look.currentEdge.color ? 1 : 0;
            }
            marked += pixels > 100 ? 1 : 0;
        }
        return marked;
    };
    EXPECT_EQ(currentSides(), 18); // two sides an edge; three edges are behind
    displayOptions.renderedEdges = false;
    EXPECT_EQ(currentSides(), 24);
    displayOptions.current = false;
    displayOptions.badEdges = true;
    for (int k = 0; k < OB->nq; ++k) OB->corners[k].edgeuse = 255;
    const auto solid = count(redraw(), look.bad.color);
    displayOptions.renderLeft = displayOptions.renderRight = false;
    const auto wires = count(redraw(), look.bad.color);
    EXPECT_NEAR(double(solid) / double(wires), 0.77, 0.05); // three of twelve edges are behind
}

TEST_F(Shading, WhileTheMouseDragsSlowPicturesAreDrafts) {
    addBall(6, false);
    turnView(30, 20);
    shown.secondsPerLook = 0.06;
    Markers markers;
    const Bitmap full = redraw();
    markers.dragging = true;
    const Bitmap draft = redraw(markers);
    EXPECT_TRUE(pictureIsDraft());
    EXPECT_NE(draft.pixels, full.pixels);
    int far = 0; // from what the same place shows in full
    for (std::size_t i = 0; i < full.pixels.size(); ++i) {
        far += std::abs(int(full.pixels[i] & 255) - int(draft.pixels[i] & 255)) > 12 ? 1 : 0;
    }
    EXPECT_LT(far, 600); // the outline is coarser
    EXPECT_EQ(redraw().pixels, full.pixels);
    EXPECT_FALSE(pictureIsDraft());
}

double areaOf(const std::vector<Vec3>& corners, const std::array<int, 3>& t) {
    const auto at = [&](std::size_t k) { return corners[std::size_t(t[k])]; };
    return cross(at(1) - at(0), at(2) - at(0)).z / 2;
}

TEST(CutFace, TheTrianglesCoverThePolygonOnceHoweverTheListBegins) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> away(0.2, 1);
    PolygonCutter cutter;
    for (int round = 0; round <= 300; ++round) {
        const int rays = round < 300 ? 4 + round % 20 : 6000;
        std::vector<Vec3> corners;
        for (int i = 0; i < rays; ++i) { // a star around the origin
            const double angle = 2 * M_PI * i / rays, radius = away(random);
            const Vec3 at{radius * std::cos(angle), radius * std::sin(angle), 0};
            corners.push_back(at);
            if (i % 30 == 29) corners.insert(corners.end(), {at * 1.01, at}); // a spike
        }
        const int n = static_cast<int>(corners.size());
        double all = 0;
        for (int i = 0; i < n; ++i) {
            const Vec3 &a = corners[std::size_t(i)], &b = corners[std::size_t((i + 1) % n)];
            all += (a.x * b.y - a.y * b.x) / 2;
        }
        std::set<std::set<double>> first; // triangles by the places of their corners
        for (int turn = 0; turn < 4; ++turn) {
            const bool reversed = turn == 3;
            if (reversed) std::reverse(corners.begin(), corners.end());
            double sum = 0;
            std::set<std::set<double>> now;
            for (const CutTriangle& triangle : cutter.cut(corners)) {
                const double area =
                    areaOf(corners, {triangle.corner[0], triangle.corner[1], triangle.corner[2]});
                EXPECT_GE(reversed ? -area : area, -1e-12) << n;
                sum += std::abs(area);
                std::set<double> places;
                for (const int corner : triangle.corner) {
                    places.insert(corners[std::size_t(corner)].x * 7
                                  + corners[std::size_t(corner)].y);
                }
                now.insert(places);
            }
            EXPECT_NEAR(sum, all, 1e-9) << n;
            EXPECT_EQ(std::ssize(cutter.cut(corners)), n - 2);
            if (turn == 0) first = now;
            EXPECT_EQ(now, first) << n << ' ' << turn;
            std::rotate(corners.begin(), corners.begin() + 1, corners.end());
        }
    }
}

} // namespace
} // namespace polyfab::test
