// SPDX-License-Identifier: GPL-3.0-or-later
// Normals of good, poor, huge and tiny faces, and the angles between them.
#include "mesh/face_angle.h"

#include "geometry/vec3.h"
#include "tests/tools/tool_test.h"

#include <cmath>

namespace polyfab::test {
namespace {

using FaceAngle = ToolTest;

TEST_F(FaceAngle, NormalsLookToWhereTheCornersRunAnticlockwise) {
    const double half = std::sqrt(0.5);
    struct {
        std::vector<Vec3> corners;
        Vec3 normal;
    } const cases[] = {
        {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 0, 1}},
        {{{0, 1, 0}, {1, 0, 0}, {0, 0, 0}}, {0, 0, -1}},
        {{{0, 0, 0}, {0, 5, 0}, {0, 5, 5}, {0, 0, 5}}, {1, 0, 0}},
        {{{0, 0, 0}, {1, 0, 1}, {1, 1, 1}, {0, 1, 0}}, {-half, 0, half}},
        // A notch of two sides is outvoted by three, but not by two.
        {{{0, 0, 0}, {1, -3, 0}, {4, -3, 0}, {1, 0, 0}, {4, 3, 0}}, {0, 0, 1}},
        {{{0, 0, 0}, {4, -3, 0}, {1, 0, 0}, {4, 3, 0}}, {}},
        {{{1, 1, 1}, {2, 1, 1}, {2, 1, 1}, {2, 2, 1}}, {0, 0, 1}}, // a repeated corner
        {{{0, 0, 0}, {1e300, 0, 0}, {0, 1e300, 0}}, {0, 0, 1}},
        {{{0, 0, 0}, {1e300, 0, 0}, {1e300, 1e300, 0}, {0, 1e300, 0}}, {0, 0, 1}},
        {{{0, 0, 0}, {1e-300, 0, 0}, {0, 1e-300, 0}}, {0, 0, 1}},
        {{{0, 0, 0}, {1e300, 0, 0}, {0, 1e-300, 0}}, {0, 0, 1}},
        {{{0, 0, 0}, {1, 2, 3}, {2, 4, 6}}, {}},
        {{{.1, .2, .3}, {.2, .4, .6}, {.7, 1.4, 2.1}}, {}}, // rounded off the line
        {{{1000.1, .2, .3}, {1000.2, .4, .6}, {1000.7, 1.4, 2.1}, {1001.3, 2.6, 3.9}}, {}},
        {{{2, .462285, 0}, {0, 1, 0}, {2, 2, 0}, {.53085, .223398, 0}}, {}}, // sides cancel out
        {{{1000, 0, 0}, {1001, 0, 0}, {1000.5, 1e-9, 0}}, {0, 0, 1}},
        {{{3, 3, 3}, {3, 3, 3}, {3, 3, 3}, {3, 3, 3}}, {}},
        {{{0.1, 0.2, 0.3}, {0.7, 0.1, 0.9}}, {}},
        {{{1, 2, 3}}, {}},
        {{}, {}},
        {{{0, 0, 0}, {infinity, 0, 0}, {0, 1, 0}}, {}},
        {{{0, 0, 0}, {1, nan, 0}, {0, 1, 0}}, {}},
        {{{0, 0, 0}, {1e308, 0, 0}, {1e308, 1e308, 0}, {0, 1e308, 0}}, {}},
    };
    for (const auto& row : cases) {
        const Vec3 normal = faceNormal(addFaceAt(row.corners));
        const Vec3 away = normal - row.normal;
        EXPECT_LT(std::sqrt(dot(away, away)), 1e-15)
            << &row - cases << ": " << normal.x << " " << normal.y << " " << normal.z;
    }
}

TEST_F(FaceAngle, AnglesAreThoseBetweenUnitVectorsAndNeverNaN) {
    for (const double degrees : {0.001, 1.0, 30.0, 89.0, 120.0, 179.0}) {
        const double radians = degrees * std::atan(1.0) / 45;
        const Vec3 turned{std::cos(radians), 0, std::sin(radians)};
        EXPECT_NEAR(angleBetween({1, 0, 0}, turned), degrees, 1e-8);
        EXPECT_EQ(angleBetween({1, 0, 0}, turned), angleBetween(turned, {1, 0, 0}));
    }
    EXPECT_EQ(angleBetween({1, 0, 0}, {0, -1, 0}), 90);
    EXPECT_EQ(angleBetween({0, 1, 0}, {0, 1, 0}), 0);
    EXPECT_EQ(angleBetween({0, 1, 0}, {0, -1, 0}), 180);
    EXPECT_EQ(angleBetween({0, 1, 0}, {}), 0);
    EXPECT_EQ(angleBetween({}, {}), 0);
    for (int i = 0; i < 10'000; ++i) {
        const Vec3 a = unit({random.below(9) - 4.0, random.below(9) - 4.0, random.below(9) - 4.0});
        const Vec3 b = i % 2 != 0 ? a * -1 : a;
        EXPECT_NEAR(angleBetween(a, b), isZero(a) || i % 2 == 0 ? 0 : 180, 1e-5);
    }
}

} // namespace
} // namespace polyfab::test
