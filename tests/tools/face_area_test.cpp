// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/face_area.h"

#include "tests/tools/tool_test.h"

#include <array>
#include <cmath>

namespace polyfab {
namespace {

class FaceArea : public test::ToolTest {
  protected:
    bool flat(const std::vector<std::array<double, 3>>& corners) {
        std::vector<int> points;
        for (const auto& [x, y, z] : corners) points.push_back(OB->addPoint(x, y, z, false));
        return hasNoArea(*test::addFace(points));
    }
};

TEST_F(FaceArea, IsNoneForLinesAndPointsOnly) {
    struct {
        std::vector<std::array<double, 3>> corners;
        bool flat;
    } const cases[] = {
        {{{3, 3, 3}}, true},
        {{{0, 0, 0}, {1, 2, 3}}, true},
        {{{7, 7, 7}, {7, 7, 7}, {7, 7, 7}}, true},
        {{{0, 0, 0}, {1, 2, 3}, {0, 0, 0}, {1, 2, 3}}, true},
        {{{0, 0, 0}, {1, 1, 1}, {1e-13, 0, 0}}, true},
        {{{0, 0, 0}, {1, 0, 0}, {0.5, 1e-9, 0}}, false},
        {{{0, 0, 0}, {1e-200, 0, 0}, {0, 1e-200, 0}}, false},
        {{{0, 0, 0}, {1e200, 0, 0}, {0, 0, 1e200}}, false},
        {{{0, 0, 0}, {1e200, 1e200, 0}, {2e200, 2e200, 0}}, true},
        {{{1e6, 1e6, 0}, {1e6 + 1e-3, 1e6, 0}, {1e6, 1e6 + 1e-3, 0}}, false},
        {{{0, 0, 0}, {1, 1, 0}, {1, 0, 0}, {0, 1, 0}}, true}, // a bow whose halves cancel out
        {{{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {1, 1, 0}}, false},
        {{{0, 0, 0}, {1, 0, 0}, {std::nan(""), 1, 0}}, false},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(flat(row.corners), row.flat) << &row - cases;
    }
}

TEST_F(FaceArea, RoundedLinesAreStillLines) {
    for (int i = 0; i < 1000; ++i) {
        const double far = std::pow(10, random.below(7));
        const auto at = [&](double along) {
            return std::array{far + along / 3, along / 7 - far, along / 11};
        };
        EXPECT_TRUE(flat({at(0), at(random.below(99)), at(1 + random.below(99)), at(100)})) << i;
    }
}

} // namespace
} // namespace polyfab
