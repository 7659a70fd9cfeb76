// SPDX-License-Identifier: GPL-3.0-or-later
// Both ways of smoothing against a plain statement of their rules on random meshes, and on flat
// grids, where rounding alone must move nothing.
#include "mesh/faces.h"
#include "mesh/screen_positions.h"
#include "mesh/stale.h"
#include "tools/smooth.h"

#include "geometry/vec3.h"
#include "mesh/garbage.h"
#include "tests/tools/tool_test.h"

#include <cmath>
#include <map>
#include <set>

namespace polyfab::test {
namespace {

/// Calls use(point before, point, point after) for the corners of live faces.
template <typename Use>
void eachCorner(bool onlySelected, Use use) {
    for (const int face : liveFaces(onlySelected)) {
        const Numbers points = pointsOf(face);
        const std::size_t n = points.size();
        for (std::size_t k = 0; k < n; ++k) {
            use(points[(k + n - 1) % n], points[k], points[(k + 1) % n]);
        }
    }
}

Vec3 worldOf(int point) { return worldPosition(OB->points[point]); }

bool same(const Vec3& a, const Vec3& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

/// Points that faces use which are not selected.
std::set<int> pointsOfUnselected() {
    std::set<int> points;
    for (const int face : liveFaces()) {
        if (OB->faces[face].selected) continue;
        for (const int p : pointsOf(face)) points.insert(p);
    }
    return points;
}

class Smooth : public ToolTest {
  protected:
    ~Smooth() override { resetView(); }

    void run(bool dents, char axis = 0) {
        stale = {false, false, false};
        OB->changed = 0;
        if (dents) {
            smoothDents(*OB);
        } else {
            smoothView(*OB, axis);
        }
        ASSERT_EQ(check(*OB), nullptr);
        ASSERT_TRUE(OB->changed && stale.points);
        ASSERT_EQ(stale.edges, dents);
    }
};

TEST_F(Smooth, OnTheScreenFreePointsGoToTheAverageOfTheirNeighbours) {
    view.client = {800, 400};
    resetView();
    for (int round = 0; round < 2000; ++round) {
        fillWithParts(12, 10, 6);
        turnView(random.below(3), random.below(100), random.below(2) != 0);
        transformPoints(*OB);
        const char axis = "\0xyz"[random.below(4)];
        const std::set<int> frozen = pointsOfUnselected();
        std::map<int, int> weight;
        std::map<int, Vec3> sum, screen;
        for (int i = 0; i < OB->np; ++i) {
            Point& p = OB->points[i];
            screen[i] = {p.sx, p.sy, p.sz};
            p.sx = p.sy = p.sz = -1; // out of date
        }
        eachCorner(false, [&](int b, int c, int) {
            weight[b]++;
            weight[c]++;
            sum[c] += screen[b];
            sum[b] += screen[c];
        });
        std::vector<Vec3> expected = allPositions();
        for (const auto& [p, count] : weight) {
            if (frozen.contains(p)) continue;
            Vec3 to = screen[p];
            if (axis == 0 || axis == 'x') to.x = sum[p].x / count;
            if (axis == 0 || axis == 'y') to.y = sum[p].y / count;
            if (axis == 0 || axis == 'z') to.z = sum[p].z / count;
            expected[static_cast<std::size_t>(p)] = projection.toWorld(to);
        }
        run(false, axis);
        for (int i = 0; i < OB->np; ++i) {
            ASSERT_TRUE(same(worldOf(i), expected[static_cast<std::size_t>(i)])) << round;
        }
    }
}

TEST_F(Smooth, DentsAreFilledByThePlainRule) {
    int filled = 0, left = 0;
    for (int round = 0; round < 2000; ++round) {
        fillWithParts(14, 20, 4);
        for (int i = 0; i < OB->np && round % 2 != 0; ++i) { // many in a line or in one place
            Point& p = OB->points[i];
            for (double* part : {&p.x, &p.y, &p.z}) *part = std::floor(*part / 4);
        }
        ASSERT_TRUE(collectGarbage(*OB));
        const std::set<int> kept = pointsOfUnselected();
        std::map<int, Vec3> normal, smoothed, sum;
        std::map<int, int> corners, count;
        eachCorner(true, [&](int prev, int at, int next) {
            const Vec3 across = cross(worldOf(next) - worldOf(at), worldOf(prev) - worldOf(at));
            if (isZero(across)) return;
            normal[at] += across * (1 / std::sqrt(dot(across, across)));
            ++corners[at];
        });
        eachCorner(true, [&](int b, int c, int) {
            smoothed[b] += normal[c];
            smoothed[c] += normal[b];
            sum[b] += worldOf(c);
            sum[c] += worldOf(b);
            ++count[b];
            ++count[c];
        });
        const std::vector<Vec3> before = allPositions();
        run(true);
        for (int i = 0; i < OB->np; ++i) {
            const Vec3& was = before[static_cast<std::size_t>(i)];
            if (kept.contains(i) || corners[i] == 0) {
                ASSERT_TRUE(same(worldOf(i), was));
                continue;
            }
            const Vec3 mean{sum[i].x / count[i], sum[i].y / count[i], sum[i].z / count[i]};
            const double dent = dot(mean - was, unit(smoothed[i]));
            const bool moved = same(worldOf(i), mean);
            ASSERT_TRUE(moved || same(worldOf(i), was));
            // Which of the two it is depends on the last digit where the surface is all but flat.
            if (std::abs(dent) < 1e-12) continue;
            ASSERT_EQ(moved, dent > 0) << round;
            ++(moved ? filled : left);
        }
    }
    EXPECT_GT(filled, 500);
    EXPECT_GT(left, 500);
}

TEST_F(Smooth, OnAFlatGridNoPointMoves) {
    const Vec3 planes[] = {{0, 0, 0}, {0, 0, -7.3}, {0.3, 0.1, 0}, {0.3, 0, 1000.1}, {3, -0.7, 1}};
    for (const auto& [right, up, height] : planes) {
        emptyMesh();
        addGrid(4, 4);
        for (Point* p = OB->points; p != OB->points + 25; ++p)
            p->z = right * p->x + up * p->y + height;
        const std::vector<Vec3> flat = allPositions();
        run(true);
        for (std::size_t i = 0; i < 25; ++i) {
            EXPECT_TRUE(same(worldOf(static_cast<int>(i)), flat[i])) << right << ' ' << i;
        }
    }
}

} // namespace
} // namespace polyfab::test
