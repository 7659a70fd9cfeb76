// SPDX-License-Identifier: GPL-3.0-or-later
// What is told of the distance between the settable points.
#include "tools/distance.h"

#include "tests/tools/tool_test.h"

namespace polyfab::test {
namespace {

using Distance = ToolTest;

TEST_F(Distance, IsToldInUnitsAndInFeetAndInches) {
    struct {
        Vec3 a, b;
        std::string told;
    } const cases[] = {
        {{},
         {},
         "dx=0, dy=0, dz=0, distance=0\ndx=0 ft  0.000 in, dy=0 ft  0.000 in, "
         "dz=0 ft  0.000 in, distance=0 ft  0.000 in"},
        {{0, 0, 0},
         {0.12, 0, 0},
         "dx=0.12, dy=0, dz=0, distance=0.12\ndx=1 ft  0.000 in, dy=0 ft  0.000 in, "
         "dz=0 ft  0.000 in, distance=1 ft  0.000 in"},
        {{1, 1, 1},
         {0, 0, 0},
         "dx=1, dy=1, dz=1, distance=1.73205\ndx=8 ft  4.000 in, dy=8 ft  4.000 in, "
         "dz=8 ft  4.000 in, distance=14 ft  5.205 in"},
        {{-3, 0, 1.25},
         {0, -4, 1.25},
         "dx=3, dy=4, dz=0, distance=5\ndx=25 ft  0.000 in, dy=33 ft  4.000 in, "
         "dz=0 ft  0.000 in, distance=41 ft  8.000 in"},
        // More feet than an int holds, and no number at all.
        {{3e8, 0, 0},
         {0, nan, 0},
         "dx=3e+08, dy=nan, dz=0, distance=nan\ndx=2147483647 ft 4230196236.000 in, "
         "dy=0 ft    nan in, dz=0 ft  0.000 in, distance=0 ft    nan in"},
    };
    for (const auto& row : cases) {
        workbench.settable = {row.a, row.b};
        tellDistance();
        EXPECT_EQ(shown.log.back(), "message|distance between the two settable points|" + row.told);
    }
    workbench.settable = {Vec3{-1e308, -1e308, 0}, Vec3{1e308, 0, 0}};
    tellDistance();
    EXPECT_NE(shown.log.back().find("dx=inf, dy=1e+308, dz=0, distance=inf\n"), std::string::npos);
    EXPECT_TRUE(shown.log.back().ends_with("distance=2147483647 ft    inf in"));
}

} // namespace
} // namespace polyfab::test
