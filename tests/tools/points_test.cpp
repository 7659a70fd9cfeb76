// SPDX-License-Identifier: GPL-3.0-or-later
// The tools that give faces points of their own, each against a plain statement of which corners
// still share a point afterwards, and copies of faces.
#include "mesh/stale.h"
#include "tools/unweld.h"

#include "tests/tools/tool_test.h"
#include "tools/duplicate.h"
#include "tools/separate_glued.h"

#include <functional>
#include <map>
#include <set>

namespace polyfab::test {
namespace {

struct Spot {
    int face, point;
};

std::vector<Spot> spots() {
    std::vector<Spot> list;
    for (const int face : liveFaces()) {
        for (const int point : pointsOf(face)) list.push_back({face, point});
    }
    return list;
}

int usedPoints() {
    std::set<int> used;
    for (const Spot& spot : spots()) used.insert(spot.point);
    return static_cast<int>(used.size());
}

/// Whether two faces may share that point afterwards.
using Together = std::function<bool(int face, int other, int point)>;

class Unweld : public ToolTest {
  protected:
    /// Corners share a point afterwards exactly when they did before and belong together; nothing
    /// else changes, and no point is left unused.
    void expectRule(void (*tool)(Mesh&), const Together& together) {
        const std::vector<Spot> before = spots();
        const auto faces = describe();
        const int points = OB->np;
        const int used = usedPoints();
        OB->highlightPoint(random.below(points));
        OB->changed = 0;
        tool(*OB);
        ASSERT_EQ(check(*OB), nullptr);
        ASSERT_EQ(describe(), faces);
        ASSERT_EQ(OB->changed, OB->np > points);
        const std::vector<Spot> after = spots();
        for (std::size_t i = 0; i < after.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                const bool expected = before[i].point == before[j].point
                                      && together(before[i].face, before[j].face, before[i].point);
                ASSERT_EQ(after[i].point == after[j].point, expected);
            }
        }
        EXPECT_EQ(OB->np - points, usedPoints() - used);
        for (int p = points; p < OB->np; ++p) {
            const Point& copy = OB->points[p];
            EXPECT_EQ(copy.sx, projection.toScreen({copy.x, copy.y, copy.z}).x);
            EXPECT_EQ(copy.highlighted, 0);
        }
    }
};

TEST_F(Unweld, GluedSurfacesAreSeparatedByThePlainRule) {
    for (int round = 0; round < 1500; ++round) {
        fillWithParts(12, 10, 6);
        // Of each point and face at it, where the face's sides lead from there.
        std::map<int, std::map<int, std::set<int>>> ends;
        for (const int face : liveFaces()) {
            const Numbers list = pointsOf(face);
            for (std::size_t k = 0; k < list.size(); ++k) {
                const int a = list[k], b = list[(k + 1) % list.size()];
                for (const auto& [from, to] : {std::pair(a, b), {b, a}}) {
                    if (from != to) ends[from][face].insert(to);
                }
            }
        }
        expectRule(separateGluedSurfaces, [&](int a, int b, int point) {
            std::set<int> surface{a}, reached = ends[point][a];
            for (std::size_t before = 0; before != surface.size();) {
                before = surface.size();
                for (const auto& [face, to] : ends[point]) {
                    if (std::none_of(to.begin(), to.end(),
                                     [&](int end) { return reached.contains(end); })) {
                        continue;
                    }
                    surface.insert(face);
                    reached.insert(to.begin(), to.end());
                }
            }
            return surface.contains(b);
        });
    }
}

TEST_F(Unweld, SelectedFacesAndPartsAreUnweldedByThePlainRule) {
    for (int round = 0; round < 500; ++round) {
        fillWithParts(12, 10, 6);
        expectRule(unweldSelected, [&](int a, int b, int) {
            return OB->faces[a].selected == OB->faces[b].selected;
        });
        fillWithParts(12, 10, 6);
        std::set<int> selected;
        for (const int face : liveFaces(true)) selected.insert(OB->faces[face].prt);
        expectRule(unweldSelectedParts, [&](int a, int b, int) {
            const int part = OB->faces[a].prt, other = OB->faces[b].prt;
            return part == other || (!selected.contains(part) && !selected.contains(other));
        });
    }
}

const std::string done = "message||I have duplicated the selected faces like you told me to";

using Duplicate = ToolTest;

TEST_F(Duplicate, MoreThanCanBeCountedIsRefused) {
    addCube();
    const int corners = std::exchange(OB->nq, INT32_MAX - 20);
    for (auto* const tool : {duplicateSelected, duplicateSelectedJoined}) {
        shown.log.clear();
        tool(*OB);
        EXPECT_EQ(shown.log.size(), 1U);
        EXPECT_NE(shown.log.front(), done);
        EXPECT_EQ(OB->nq, INT32_MAX - 20);
    }
    OB->nq = corners;
    EXPECT_EQ(OB->np, 8);
    EXPECT_EQ(liveFaces(true).size(), 6U);
}

TEST_F(Duplicate, CopiesAndWallsAreThoseOfThePlainRule) {
    for (int round = 0; round < 1000; ++round) {
        fillWithParts(9, 8, 6);
        const bool join = round % 2 != 0;
        const Numbers chosen = liveFaces(true);
        auto faces = describe();
        const auto before = faces;
        std::set<int> used;
        std::map<std::pair<int, int>, int> sides; // as they run; with their number
        std::size_t live = 0;
        for (const int face : liveFaces()) {
            faces[live].selected = 0;
            if (OB->faces[face].selected) faces.push_back(before[live]);
            ++live;
        }
        for (const int face : chosen) {
            const Numbers points = pointsOf(face);
            used.insert(points.begin(), points.end());
            for (std::size_t k = 0; k < points.size(); ++k) {
                const int next = points[(k + 1) % points.size()];
                if (points[k] != next) ++sides[{points[k], next}];
            }
        }
        std::erase_if(sides, [all = sides](const auto& side) {
            const auto back = all.find({side.first.second, side.first.first});
            return side.second > 1 || back != all.end();
        });
        const std::size_t walls = join ? sides.size() : 0;
        const int slots = OB->nf, points = OB->np;
        OB->changed = 0;
        stale.edges = false;
        (join ? duplicateSelectedJoined : duplicateSelected)(*OB);

        ASSERT_EQ(check(*OB), nullptr);
        const auto copies = static_cast<int>(chosen.size());
        ASSERT_EQ(OB->nf, slots + copies + static_cast<int>(walls));
        ASSERT_EQ(OB->np, points + static_cast<int>(used.size()));
        ASSERT_EQ(shown.log.back() == done, copies > 0);
        ASSERT_TRUE(copies == 0 || (OB->changed && stale.edges));
        std::map<int, int> copyOf;
        for (int i = 0; i < copies; ++i) {
            const Numbers from = pointsOf(chosen[static_cast<std::size_t>(i)]);
            const Numbers to = pointsOf(slots + i);
            ASSERT_EQ(from.size(), to.size());
            for (std::size_t k = 0; k < from.size(); ++k) {
                ASSERT_GE(to[k], points);
                ASSERT_EQ(copyOf.try_emplace(from[k], to[k]).first->second, to[k]);
            }
        }
        for (int i = slots + copies; i < OB->nf; ++i) {
            const Numbers wall = pointsOf(i);
            ASSERT_EQ(wall.size(), 4U);
            ASSERT_EQ(copyOf.at(wall[2]), wall[1]);
            ASSERT_EQ(copyOf.at(wall[3]), wall[0]);
            ASSERT_TRUE(sides.erase({wall[2], wall[3]})); // each side once, along with the original
        }
        ASSERT_EQ(static_cast<int>(liveFaces(true).size()), copies);
        OB->nf = slots + copies; // without the walls
        ASSERT_EQ(describe(), faces);
    }
}

} // namespace
} // namespace polyfab::test
