// SPDX-License-Identifier: GPL-3.0-or-later
#include "display/box.h"

#include "display/view.h"
#include "tests/support/mesh_fixture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <utility>

namespace polyfab {
namespace {

class BoxTest : public test::MeshTest {
  protected:
    BoxTest() {
        box = Box();
        resizeView({801, 400});
        resetView();
    }
    ~BoxTest() override { box = Box(); }
};

TEST_F(BoxTest, AFaceIsInWhenAllCornersAre) {
    test::addCube();
    for (int i = 0; i < OB->np; ++i) {
        OB->points[i].sx = OB->points[i].x;
        OB->points[i].sy = OB->points[i].y;
        OB->points[i].sz = OB->points[i].z;
    }
    struct Row {
        Box box;
        std::vector<bool> in; ///< sides z = -1, z = 1, y = -1, y = 1, x = -1, x = 1
    };
    const Row rows[] = {
        {{{-1, -1, -1}, {1, 1, 1}}, {true, true, true, true, true, true}},
        {{{1, -1, 1}, {-1, 1, -1}}, {true, true, true, true, true, true}}, // cut-offs in any order
        {{{-1, -1, -1}, {1, 1, 0.999}}, {true, false, false, false, false, false}},
        {{{-5, 0.5, -5}, {5, 5, 5}}, {false, false, false, true, false, false}},
        {{{-0.5, -5, -5}, {5, 5, 5}}, {false, false, false, false, false, true}},
        {{{0, 0, 0}, {0, 0, 0}}, {false, false, false, false, false, false}},
    };
    for (const Row& row : rows) {
        box = row.box;
        std::vector<bool> in;
        for (int f = 0; f < OB->nf; ++f) in.push_back(inBox(OB->faces[f]));
        EXPECT_EQ(in, row.in);
    }
    box = {{-1, -1, -1}, {1, 1, 1}};
    OB->points[0].sz = NAN;
    EXPECT_FALSE(inBox(OB->faces[0]));
    EXPECT_TRUE(inBox(OB->faces[1]));
}

TEST_F(BoxTest, FittedItHoldsTheFacesExactlyAndStillDoesWhenThePictureIsResized) {
    test::addCube();
    const double c = std::cos(0.7);
    const double s = std::sin(0.7);
    const double turn[3][3] = {{c, 0, s}, {0, 1, 0}, {-s, 0, c}};
    std::copy_n(&turn[0][0], 9, &view.rotation[0][0]);
    view.scale = 97.3;
    applyView(); // the screen positions are out of date: fitting does not need them
    ASSERT_TRUE(fitBox(*OB, false));
    EXPECT_NEAR(std::abs(box.right.x - box.left.x), 2 * (c + s) * 97.3, 1e-9);
    EXPECT_NEAR(std::abs(box.right.y - box.left.y), 2 * 97.3, 1e-9);
    for (const Size client : {Size{801, 400}, Size{333, 1000}, Size{3, 2}, Size{1920, 1000}}) {
        resizeView(client);
        transformPoints(*OB);
        for (int f = 0; f < OB->nf; ++f) EXPECT_TRUE(inBox(OB->faces[f])) << client.width;
    }
}

TEST_F(BoxTest, OnlyLiveFacesWithPositionsCount) {
    EXPECT_FALSE(fitBox(*OB, false));
    test::addCube();
    const int far = OB->addPoint(50, 50, 50, false);
    OB->addPoint(NAN, 0, 0, false);
    test::addFace({0, far, 1})->q = nullptr;
    test::addFace({0, far + 1, 1});
    for (int f = 1; f < OB->nf; ++f) OB->faces[f].selected = 0;
    const Box none = box;
    OB->faces[0].selected = 0;
    EXPECT_FALSE(fitBox(*OB, true));
    EXPECT_EQ(box.right.x, none.right.x);
    OB->faces[0].selected = 1;
    // One world unit is 200 pixels; the middles are pixel 199.5.
    ASSERT_TRUE(fitBox(*OB, true)); // the side z = -1
    EXPECT_EQ(std::pair(box.left.x, box.right.x), std::pair(-0.5, 399.5));
    EXPECT_EQ(std::pair(box.left.z, box.right.z), std::pair(399.5, 399.5));
    ASSERT_TRUE(fitBox(*OB, false));
    EXPECT_EQ(std::pair(box.left.z, box.right.z), std::pair(-0.5, 399.5));
}

} // namespace
} // namespace polyfab
